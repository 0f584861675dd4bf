// Reading as in a book: which pages lie side by side, on which side the next one is, and what the
// user has chosen of that for what he views.
#include <map>
#include <utility>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/read/source_file.h"
#include "picture/show/read_to_show.h"
#include "places/place_memory.h"
#include "res/resource.h"
#include "ui/control/frmControl.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

constexpr wchar_t kOpened[] = L"見開きで表示します";
constexpr wchar_t kClosed[] = L"1 ページずつ表示します";
constexpr wchar_t kFromRight[] = L"右から左へ読みます";
constexpr wchar_t kFromLeft[] = L"左から右へ読みます";
constexpr wchar_t kCannotShift[] = L"これ以上はずらせません";

int16_t& DefaultFor(bool isArchive) {
    return isArchive ? Values().general.bookArchives : Values().general.bookFolders;
}

BookChoice DefaultChoice(bool isArchive) {
    const GeneralSettings& general = Values().general;
    return {DefaultFor(isArchive) != 0, general.bookFromRight != 0, general.bookCover != 0};
}

// A wide scan has two pages already; what moves or has pages of its own is none.
bool StandsAlone(const ReadToShow& read, bool isListedPage) {
    return !IsPictureKind(read.file.kind) || read.picture.Width() >= read.picture.Height() ||
           read.animation.count > 0 || (read.file.pages > 0 && !isListedPage);
}

}  // namespace

void frmControl::RegisterBookCommands() {
    const auto choose = [this](int command, bool BookChoice::*part, const wchar_t* whenOn,
                               const wchar_t* whenOff) {
        window_.Commands().Register(command,
                                    {.run =
                                         [=, this] {
                                             book_.*part = !(book_.*part);
                                             BookChosen();
                                             window_.ShowNote(book_.*part ? whenOn : whenOff);
                                         },
                                     .enabled = [this] { return formLoaded_; },
                                     .checked = [=, this] { return book_.*part; }});
    };
    choose(commandBook, &BookChoice::isOpen, kOpened, kClosed);
    choose(commandBookFromRight, &BookChoice::fromRight, kFromRight, kFromLeft);
    choose(commandBookCover, &BookChoice::coverIsAlone, L"最初のページを単独で表示します",
           L"最初のページも見開きにします");
    window_.Commands().Register(
        commandBookShift,
        {.run = [this] { ShiftPages(); }, .enabled = [this] { return sequence_.IsOpenAsBook(); }});
}

// What was chosen for it, else for the last one of its kind.
void frmControl::OpenAsBook(const std::wstring& container, bool isArchive) {
    if (container != bookOf_) {
        bookOf_ = container;
        bookOfArchive_ = isArchive;
        book_ = BookOf(container).value_or(DefaultChoice(isArchive));
    }
    sequence_.OpenAsBook(book_.isOpen, book_.coverIsAlone);
}

void frmControl::BookChosen() {
    GeneralSettings& general = Values().general;
    DefaultFor(bookOfArchive_) = book_.isOpen ? 1 : 0;
    general.bookFromRight = book_.fromRight ? 1 : 0;
    general.bookCover = book_.coverIsAlone ? 1 : 0;
    if (!bookOf_.empty()) KeepBook(bookOf_, book_);
    sequence_.OpenAsBook(book_.isOpen, book_.coverIsAlone);
    ShowSpreadAnew();
}

void frmControl::ShiftPages() {
    const int index = SelectedPlace(sequence_).index;
    if (index < 0 || !sequence_.SpreadsHere().Shift(index)) {
        return window_.ShowNote(kCannotShift);
    }
    ShowSpreadAnew();
}

// What is shown, as it lies now.
void frmControl::ShowSpreadAnew() {
    if (shownPath_.empty() || IsReadUnderWay() || busy_ > 0) return;
    if (!sequence_.IsInArchive()) {
        if (sequence_.Files().Current() == shownPath_) listFileName_Click();
    } else if (sequence_.HasPages() || memberPage_ == 0) {
        listArchiveFile_Click();
    }
}

PageSide frmControl::NextPageSide() const {
    if (!sequence_.IsOpenAsBook()) return PageSide::kNone;
    return book_.fromRight ? PageSide::kLeft : PageSide::kRight;
}

// For what is about to be read of this entry.
LayOpen frmControl::LayingOpen(int index) {
    if (!sequence_.IsOpenAsBook() || index < 0) return {};
    return [this, index](ReadToShow page) { return LaidOpen(index, std::move(page)); };
}

// Which page lies beside it shows while they are read, for what is wide stands alone.
ReadToShow frmControl::LaidOpen(int index, ReadToShow page) {
    const bool isMember = sequence_.IsInArchive();
    const auto revision = [this, isMember] {
        return isMember ? sequence_.Members().Revision() : sequence_.Files().Revision();
    };
    const uint64_t before = revision();
    std::map<int, ReadToShow> read;
    sequence_.SpreadsHere().Tell(index, StandsAlone(page, sequence_.HasPages()));
    for (;;) {
        const Spread spread = sequence_.SpreadHere(index);
        const int other = spread.first == index ? spread.Last() : spread.first;
        if (other == index) break;
        const auto found = read.find(other);
        if (found != read.end()) {
            const bool isLeft = (other > index) != book_.fromRight;
            if (JoinPages(page, found->second, isLeft)) break;
            sequence_.SpreadsHere().Tell(index, true);
            continue;
        }
        ReadToShow neighbor = ReadPageBeside(other);
        // Messages were handled.
        if (revision() != before || isMember != sequence_.IsInArchive()) return page;
        sequence_.SpreadsHere().Tell(other, StandsAlone(neighbor, sequence_.HasPages()));
        read.emplace(other, std::move(neighbor));
    }
    sequence_.SpreadsHere().Keep(sequence_.SpreadHere(index));
    return page;
}

// Archives and unknown files are told by their names, without being opened.
ReadToShow frmControl::ReadPageBeside(int index) {
    if (sequence_.IsInArchive()) {
        if (!sequence_.Members().At(index).isWanted) return {};
        const AheadEntry entry = EntryOfMember(sequence_, index);
        return sequence_.HasPages() ? ReadPageToShow(entry.path, entry.page, window_)
                                    : ReadMemberToShow(entry, window_);
    }
    const ListedFile& file = sequence_.Files().At(index);
    const std::wstring path = file.path;
    if (!file.isWanted || !IsPictureKind(LookAtName(path).kind)) return {};
    return ReadFileToShow(path, window_);
}

// Nothing lies beside what could not be shown.
void frmControl::TellNoPage(int index, bool isMember) {
    if (!sequence_.IsOpenAsBook() || index < 0 || isMember != sequence_.IsInArchive()) return;
    sequence_.SpreadsHere().Tell(index, true);
}

}  // namespace tessary
