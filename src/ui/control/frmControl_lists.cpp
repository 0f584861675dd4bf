// The control bar's lists: filling them, and what a click shows.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/read/arrangement.h"
#include "picture/show/modShowPicture.h"
#include "picture/show/picture_text.h"
#include "picture/show/read_to_show.h"
#include "ui/control/chosen_order.h"
#include "ui/control/frmControl_busy.h"
#include "ui/form/activity.h"
#include "ui/form/message_loop.h"

namespace tessary {
namespace {

constexpr size_t kFilesPerBreath = 100;
constexpr size_t kAlwaysTold = 200;
constexpr DWORD kBreathMilliseconds = 20;

// What the user is told of a read that takes long.
constexpr wchar_t kReading[] = L"読み込んでいます";

constexpr wchar_t kNotArchive[] = L"Not Archive File.";

constexpr wchar_t kEmptyList[] = L"表示するファイルがありません。";
constexpr wchar_t kVanished[] = L" が見つかりません。\r\n移動または削除された可能性があります。";

const wchar_t* TagOf(const ShownFile& shown) {
    if (shown.passedBy) return kTagNotFetched;
    return shown.stopped ? kTagStopped : KindTag(shown.kind);
}

bool IsPlainFile(const std::wstring& path) {
    return !path.empty() && PathExists(path) && !IsFolder(path);
}

}  // namespace

// --- Being busy ---

frmControl::Busy::Busy(frmControl& bar, const wchar_t* what) : bar_(bar), focused_(GetFocus()) {
    reading_.emplace(bar.window_, what);
    if (++bar_.busy_ == 1) Ahead().Thumbs().Hold(true);
    if (bar_.burst_ != nullptr) return;
    if (!bar_.player_.IsPlaying()) pointer_.emplace();
}

frmControl::Busy::~Busy() {
    reading_.reset();
    if (--bar_.busy_ > 0) return;
    Ahead().Thumbs().Hold(false);
    if (bar_.burst_ == nullptr) bar_.EnableParts(focused_);
}

frmControl::Burst::Burst(frmControl& bar) : bar_(bar), focused_(GetFocus()) {
    files_.emplace(bar.listFileName_);
    members_.emplace(bar.listArchiveFile_);
    bar_.burst_ = this;
    bar_.texts_.Hold();
}

frmControl::Burst::~Burst() {
    bar_.burst_ = nullptr;
    bar_.texts_.Release();
    ShowLists();
    bar_.EnableParts(focused_);
}

void frmControl::Burst::ShowLists() {
    files_.reset();
    members_.reset();
    bar_.ShowFoldedOrNot();  // the bar may have been folded meanwhile
}

// The entries change under the user's hands.
void frmControl::DisableParts() {
    listsChange_ = true;
    placeSlider_.Window().SetEnabled(false);
    listFileName_.SetEnabled(false);
    listArchiveFile_.SetEnabled(false);
    UpdateToolbar();
}

void frmControl::EnableParts(HWND focused) {
    listsChange_ = false;
    if (Handle() == nullptr) return;
    placeSlider_.Window().SetEnabled(SelectedPlace(sequence_).count > 1);
    listFileName_.SetEnabled(true);
    listArchiveFile_.SetEnabled(sequence_.IsInArchive());
    UpdateToolbar();
    // A disabled list lost the focus to the bar; keys are to go on where they were.
    if (GetFocus() == Handle()) FocusPart(focused);
}

// --- Filling ---

bool frmControl::SetFileList(std::span<const std::wstring> files) {
    std::vector<ListedFile> listed;
    listed.reserve(files.size());
    for (const std::wstring& path : files)
        listed.push_back({.path = path, .place = static_cast<uint32_t>(listed.size())});
    return ShowList(listed, 0);
}

// Of one folder: in its order.
bool frmControl::ShowList(std::span<const ListedFile> files, size_t first,
                          const std::wstring& folder) {
    if (busy_ > 0 || !Load(window_.Handle())) return false;
    follower_.End();
    listFolder_ = folder;
    fileOrder_ = OrderFor(folder);
    follower_.SetOrder(fileOrder_);
    ++listNumber_;
    wishes_.ForgetMoves();
    randomWay_.Forget();
    shownPath_.clear();
    FillFileList(files);
    EndLoad();
    if (CurrentActivity().quitRequested) return false;
    if (!HasFiles()) {
        startAt_ = {};
        ShowEmptyList();
        return false;
    }
    ComeUp();
    const int start = startAt_.IsNone() ? -1 : sequence_.Files().IndexOf(startAt_.file);
    const int last = sequence_.Files().Count() - 1;
    SelectFile(start >= 0 ? start : std::min(static_cast<int>(first), last),
               start < 0 && first > 0);
    startAt_ = {};
    return true;
}

void frmControl::FillFileList(std::span<const ListedFile> files) {
    const Busy busy(*this, L"リストを更新しています");
    DisableParts();
    DoEvents();
    sequence_.ClearFiles();
    const bool isShort = Values().general.shortList != 0;
    const size_t count = isShort ? std::min(files.size(), kShortListCount) : files.size();
    sequence_.Files().Expect(count);
    const std::wstring total = std::to_wstring(static_cast<int64_t>(files.size()) - 1);
    DWORD lastBreath = 0;
    for (size_t i = 0; i < count && !CurrentActivity().quitRequested; ++i) {
        if (!files[i].path.empty()) sequence_.Files().Add(files[i]);
        // A long list counts faster than anybody reads, and telling would take longer than filling.
        if (i % kFilesPerBreath == 0 &&
            (i <= kAlwaysTold || GetTickCount() - lastBreath >= kBreathMilliseconds)) {
            textFileInfo_.SetText(L"リストを更新中です [" + std::to_wstring(i) + L" / " + total +
                                  L" ]");
            DoEvents();
            lastBreath = GetTickCount();
        }
    }
    textFileInfo_.SetText({});
    TellCut(count, files.size());
}

// Once, until the next list.
void frmControl::TellCut(size_t listed, size_t files) {
    if (window_.statusInformation().PanelText(kNoticePanel) == std::exchange(cutNotice_, {})) {
        window_.SetPanelText(kNoticePanel, {});
    }
    if (listed == files || CurrentActivity().quitRequested) return;
    cutNotice_ = std::to_wstring(listed) + L" 個を超えたため、後の " +
                 std::to_wstring(files - listed) + L" 個は一覧に入りません。";
    window_.SetPanelText(kNoticePanel, cutNotice_);
}

void frmControl::ClearLists() {
    if (busy_ > 0) return;
    follower_.End();
    sequence_.ClearFiles();
    sequence_.LeaveArchive();
    listArchiveFile_.SetEnabled(false);
}

void frmControl::PictureReplaced(const std::wstring& info) {
    shownPath_.clear();
    memberPages_ = 0;
    PlaceChanged();
    if (formLoaded_) texts_.TellInfo(info);
}

void frmControl::PictureIsDamaged() {
    if (formLoaded_) texts_.TellInfo(texts_.Info() + kDamagedMark);
}

bool frmControl::ShowAnew(const std::wstring& path) {
    FileSequence::FileEntries& files = sequence_.Files();
    if (IsReadUnderWay() || sequence_.IsInArchive() || files.Current() != path) return false;
    files.Select(files.Cursor());
    return true;
}

std::optional<ShownMember> frmControl::MemberOf(const PictureSource& source) const {
    const int cursor = sequence_.IsInArchive() ? sequence_.Members().Cursor() : -1;
    if (cursor < 0 || sequence_.Archive() != source.path) return std::nullopt;
    const ListedMember& member = sequence_.Members().At(cursor);
    if (FileNameOf(member.name) != source.fileName) return std::nullopt;
    return ShownMember{source.path, member.position, member.name};
}

void frmControl::SetMembers(std::span<const ListedMember> members) {
    listArchiveFile_.SetPlaceholder({});
    memberOrder_ = OrderFor(loadingPath_.empty() ? sequence_.Archive() : loadingPath_);
    std::vector<ListedMember> ordered(members.begin(), members.end());
    PutInOrder(memberOrder_, ordered);
    sequence_.SetMembers(ordered);
}

void frmControl::ShowNoArchive() {
    sequence_.LeaveArchive();
    listArchiveFile_.SetEnabled(false);
    listArchiveFile_.SetPlaceholder(kNotArchive);
}

// --- Showing ---

// A load that is still running goes on: there is never a second one.
void frmControl::listFileName_Click() {
    if (IsLoading()) {
        const FileSequence::FileEntries& files = sequence_.Files();
        const bool isThatOne = files.Cursor() >= 0 && files.Current() == loadingPath_;
        wishes_.Click(true, !isThatOne, keyRepeats_);
        return WishIsThere();
    }
    if (IsReadUnderWay()) return;
    CurrentActivity().pictureLoading = true;
    sequence_.LeaveArchive();
    if (sequence_.Files().Cursor() >= 0) {
        const std::wstring path = sequence_.Files().Current();
        if (!IsPlainFile(path)) return ShowVanished(path);  // the flag stays
        ShowListedFile(path);
    }
    EndLoad();
}

void frmControl::ShowVanished(const std::wstring& path) {
    const std::wstring name = FileNameOf(path);
    ShowReasonFor(window_, L"ファイル " + name + kVanished);
    shownPath_ = path;
    failure_.clear();
    ShowNoArchive();
    texts_.TellNotShown(KindTag(kFileUnknown) + name);
    TellPlace();
}

void frmControl::ShowEmptyList() {
    ShowReasonFor(window_, kEmptyList);
    shownPath_.clear();
    failure_.clear();
    ShowNoArchive();
    texts_.TellNotShown({});
}

// Whatever goes wrong, the picture before does not stay.
ShownFile frmControl::Show(const std::wstring& name, const std::function<ShownFile()>& show) {
    try {
        return show();
    } catch (...) {
        const std::wstring failure = FailureText(L"ファイル " + name, CurrentError().Description());
        ShowReasonFor(window_, failure);
        return {.failure = failure};
    }
}

void frmControl::ShowListedFile(const std::wstring& path) {
    const std::wstring name = FileNameOf(path);
    const bool fromBehind = std::exchange(entersAtEnd_, false);
    const int index = sequence_.Files().Cursor();
    OpenAsBook(FolderOf(path), false);
    const Place start = startAt_.file == path ? std::exchange(startAt_, {}) : Place();
    ShownFile shown;
    {
        const Busy busy(*this, kReading);
        loadingPath_ = path;
        passedBy_ = false;
        texts_.TellLoading(kTagLoading + name);
        if (IsInMotion() || sequence_.IsOpenAsBook()) PlanAhead({path});
        const LayOpen layOpen = LayingOpen(index);
        shown = Show(name, [&] { return ShowFile(path, window_, *this, layOpen); });
        if (!IsPictureKind(shown.kind)) TellNoPage(index, false);
        loadingPath_.clear();
        texts_.EndLoading();
        failure_ = shown.failure;
        passedBy_ = shown.passedBy;
        shownPath_ = path;
        if (IsPictureKind(shown.kind)) {
            const std::wstring tail = PictureInfoTail();
            const uint32_t page = shown.pages > 0 ? 1 : 0;
            window_.SetPictureSource(
                {name, shown.pluginName, path, page, shown.pages, IsSpread(index)});
            texts_.TellInfo(TagOf(shown) + name + tail);
            texts_.TellShown(kTagShown + name + tail);
        } else {
            texts_.TellNotShown(TagOf(shown) + name);
        }
        if (shown.kind == kFileArchive && !sequence_.Members().IsEmpty()) {
            sequence_.EnterArchive(path);
        }
        if (shown.pages > 0) EnterPages(path, shown.pages);
        if (sequence_.IsInArchive()) OpenAsBook(path, true);
    }
    if (shown.pages == 0 && shown.kind != kFileArchive) {
        ShowNoArchive();
    } else if (sequence_.IsInArchive() && !CurrentActivity().quitRequested) {
        if (BeginWithin(start, fromBehind)) return;
    }
    window_.pictureView().Refresh();
    PlanAhead({path});
}

void frmControl::EnterPages(const std::wstring& path, uint32_t count) {
    listArchiveFile_.SetPlaceholder({});
    sequence_.EnterPages(path, count);
    sequence_.Members().SetCursor(0);
}

void frmControl::listArchiveFile_Click() {
    if (!sequence_.IsInArchive() || sequence_.Members().Cursor() < 0) return;
    if (IsLoading()) {
        // The members are those of the file that is being viewed, whatever was clicked since.
        FileSequence::FileEntries& files = sequence_.Files();
        if (wishes_.file) files.SetCursor(files.IndexOf(sequence_.Archive()));
        wishes_.Click(false, true, keyRepeats_);
        return WishIsThere();
    }
    ShowMemberPage(0);
}

void frmControl::ShowMemberPage(uint32_t page) {
    if (IsReadUnderWay()) return;
    CurrentActivity().pictureLoading = true;
    ShowListedMember(page);
    EndLoad();
}

// Pages of a file are listed; those of a member are not.
void frmControl::StepPage(int pages) {
    const bool areListed = sequence_.HasPages();
    const int now = areListed ? sequence_.Members().Cursor() : static_cast<int>(memberPage_);
    const int count = areListed ? sequence_.Members().Count() : static_cast<int>(memberPages_);
    const int page = std::clamp(now + pages, 0, std::max(count - 1, 0));
    if (page == now || count == 0) return;
    if (areListed) return sequence_.Members().Select(page);
    ShowMemberPage(static_cast<uint32_t>(page));
}

void frmControl::ShowListedMember(uint32_t page) {
    const std::wstring archive = sequence_.Archive();
    const std::wstring archiveName = FileNameOf(archive);
    const ListedMember& selected = sequence_.Members().At(sequence_.Members().Cursor());
    const std::wstring member = FileNameOf(selected.name);
    const bool isPage = sequence_.HasPages();
    const std::wstring place = KindTag(isPage ? kFilePicture : kFileArchive) + archiveName + L" - ";
    AheadEntry entry = EntryOfMember(sequence_, sequence_.Members().Cursor());
    if (!isPage) entry.page = page;
    const int index = sequence_.Members().Cursor();
    const LayOpen layOpen = page == 0 ? LayingOpen(index) : LayOpen();
    ShownFile shown;
    {
        const Busy busy(*this, kReading);
        texts_.TellLoading(place + kTagLoading + member);
        if (IsInMotion() || layOpen) PlanAhead(entry);
        shown = Show(member, [&] {
            return isPage ? ShowPage(archive, entry.page, window_, layOpen)
                          : ShowArchiveMember(archive, entry.member, window_, page, layOpen);
        });
        if (!IsPictureKind(shown.kind)) TellNoPage(index, true);
        texts_.EndLoading();
        window_.pictureView().Refresh();
    }
    if (page == 0) memberPages_ = isPage ? 0 : shown.pages;
    memberPage_ = page;
    const auto pages = isPage ? static_cast<uint32_t>(sequence_.Members().Count()) : memberPages_;
    if (IsPictureKind(shown.kind)) {
        const std::wstring tail = PictureInfoTail();
        window_.SetPictureSource({isPage ? archiveName : member, shown.pluginName, archive,
                                  pages > 0 ? entry.page + 1 : 0, pages,
                                  layOpen && IsSpread(index)});
        texts_.TellInfo(place + (isPage ? L"" : TagOf(shown)) + member + tail);
        texts_.TellShown(kTagShown + archiveName + L" - " + member + (isPage ? L"" : archiveName) +
                         tail);
    } else {
        texts_.TellNotShown(place + TagOf(shown) + member);
    }
    PlanAhead(entry);
}

// No message box may stop a show.
std::wstring frmControl::Failure() const {
    return player_.IsPlaying() ? std::wstring() : failure_;
}

void frmControl::EndLoad() {
    CurrentActivity().pictureLoading = false;
    burst_ == nullptr ? TellPlace() : PlaceChanged();
    window_.CloseIfAsked();
}

}  // namespace tessary
