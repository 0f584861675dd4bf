// The control bar's lists: filling them, what a click shows, and stepping.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "picture/show/modShowPicture.h"
#include "picture/show/picture_text.h"
#include "picture/show/read_picture.h"
#include "ui/control/frmControl_busy.h"
#include "ui/form/message_loop.h"

namespace tessary {
namespace {

constexpr size_t kLastFileIndex = 32000;  // the entry behind it is still taken
constexpr size_t kFilesPerBreath = 100;
constexpr size_t kAlwaysTold = 200;
constexpr DWORD kBreathMilliseconds = 20;

// How long a load of a fast run takes before it is told what is being loaded.
constexpr UINT kLongLoadMilliseconds = 200;

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
    ++bar_.busy_;
    if (bar_.burst_ != nullptr) return;
    if (!bar_.player_.IsPlaying()) pointer_.emplace();
}

frmControl::Busy::~Busy() {
    reading_.reset();
    if (--bar_.busy_ == 0 && bar_.burst_ == nullptr) bar_.EnableParts(focused_);
}

frmControl::Burst::Burst(frmControl& bar) : bar_(bar), focused_(GetFocus()) {
    files_.emplace(bar.listFileName_);
    members_.emplace(bar.listArchiveFile_);
    bar_.burst_ = this;
}

frmControl::Burst::~Burst() {
    bar_.burst_ = nullptr;
    bar_.TellLate();
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
    listFileName_.SetEnabled(false);
    listArchiveFile_.SetEnabled(false);
    UpdateToolbar();
}

void frmControl::EnableParts(HWND focused) {
    listsChange_ = false;
    if (Handle() == nullptr) return;
    listFileName_.SetEnabled(true);
    listArchiveFile_.SetEnabled(archiveShown_);
    UpdateToolbar();
    // A disabled list lost the focus to the bar; keys are to go on where they were.
    if (GetFocus() == Handle()) FocusPart(focused);
}

void frmControl::TellLate() {
    longLoad_.Stop();
    if (lateInfo_) textFileInfo_.SetText(*std::exchange(lateInfo_, {}));
    if (lateShown_) window_.SetPanelText(kShownFilePanel, *std::exchange(lateShown_, {}));
    if (burst_ != nullptr) burst_->ShowLists();
}

void frmControl::TellInfo(const std::wstring& info) {
    if (burst_ != nullptr) {
        lateInfo_ = info;
    } else {
        textFileInfo_.SetText(info);
    }
}

// The same in the bar and in the main window.
void frmControl::TellNotShown(const std::wstring& text) {
    TellInfo(text);
    TellShown(text);
}

void frmControl::TellLoading(const std::wstring& text) {
    loadingText_ = text;
    TellNotShown(text);
    if (burst_ != nullptr) {
        longLoad_.Start(kLongLoadMilliseconds);
    } else {
        PaintNow(Handle());
        PaintNow(window_.Handle());
    }
}

// In the main window's status bar.
void frmControl::TellShown(const std::wstring& text) {
    if (burst_ != nullptr) {
        lateShown_ = text;
    } else {
        window_.SetPanelText(kShownFilePanel, text);
    }
}

// --- Filling ---

bool frmControl::SetFileList(std::span<const std::wstring> files) {
    if (busy_ > 0 || !Load(window_.Handle())) return false;
    wishes_.ForgetMoves();
    shownPath_.clear();
    FillFileList(files);
    EndLoad();
    if (Values().quitRequested) return false;
    if (listFileName_.Count() == 0) {
        ShowEmptyList();
        return false;
    }
    SetVisible(true);
    listFileName_.Select(0);
    return true;
}

void frmControl::FillFileList(std::span<const std::wstring> files) {
    const Busy busy(*this, L"リストを更新しています");
    DisableParts();
    DoEvents();
    listFileName_.Clear();
    std::optional<RedrawHold> hold(std::in_place, listFileName_);
    const std::wstring total = std::to_wstring(static_cast<int64_t>(files.size()) - 1);
    DWORD lastBreath = 0;
    for (size_t i = 0; i < files.size() && !Values().quitRequested; ++i) {
        if (!files[i].empty()) listFileName_.Add(files[i]);
        // A long list counts faster than anybody reads, and telling would take longer than filling.
        if (i % kFilesPerBreath == 0 &&
            (i <= kAlwaysTold || GetTickCount() - lastBreath >= kBreathMilliseconds)) {
            textFileInfo_.SetText(L"リストを更新中です [" + std::to_wstring(i) + L" / " + total +
                                  L" ]");
            DoEvents();
            lastBreath = GetTickCount();
        }
        if (i > kLastFileIndex) break;
    }
    hold.reset();
    ShowFoldedOrNot();  // the bar may have been folded meanwhile
    textFileInfo_.SetText({});
    TellCut(files);
}

// Once, until the next list.
void frmControl::TellCut(std::span<const std::wstring> files) {
    if (window_.statusInformation().PanelText(kNoticePanel) == std::exchange(cutNotice_, {})) {
        window_.SetPanelText(kNoticePanel, {});
    }
    if (files.size() <= kLastFileIndex + 2 || Values().quitRequested) return;
    cutNotice_ = std::to_wstring(kLastFileIndex + 2) + L" 個を超えたため、後の " +
                 std::to_wstring(files.size() - kLastFileIndex - 2) + L" 個は一覧に入りません。";
    window_.SetPanelText(kNoticePanel, cutNotice_);
}

std::vector<std::wstring> frmControl::FileList() const {
    std::vector<std::wstring> files;
    files.reserve(static_cast<size_t>(listFileName_.Count()));
    for (int index = 0; index < listFileName_.Count(); ++index) {
        files.push_back(listFileName_.Item(index));
    }
    return files;
}

void frmControl::ClearLists() {
    if (busy_ > 0) return;
    listFileName_.Clear();
    archiveShown_ = false;
    listArchiveFile_.Clear();
    listArchiveFile_.SetEnabled(false);
}

void frmControl::PictureReplaced(const std::wstring& info) {
    shownPath_.clear();
    if (formLoaded_) TellInfo(info);
}

void frmControl::SetMembers(std::span<const ListedMember> members) {
    std::optional<RedrawHold> hold(std::in_place, listArchiveFile_);
    listArchiveFile_.SetDimmed(false);
    listArchiveFile_.Clear();
    for (const ListedMember& member : members) {
        listArchiveFile_.SetItemData(listArchiveFile_.Add(member.name), member.position);
    }
    hold.reset();
    if (burst_ == nullptr) ShowFoldedOrNot();  // the bar may have been folded meanwhile
}

void frmControl::ShowNoArchive() {
    archiveShown_ = false;
    listArchiveFile_.SetEnabled(false);
    listArchiveFile_.MarkSelected(-1);
    listArchiveFile_.Clear();
    listArchiveFile_.Add(kNotArchive);
    listArchiveFile_.SetDimmed(true);
}

// --- Showing ---

// A load that is still running goes on: there is never a second one.
void frmControl::listFileName_Click() {
    if (IsLoading()) {
        const int clicked = listFileName_.Selected();
        wishes_.Click(true, clicked < 0 || listFileName_.Item(clicked) != loadingPath_);
        return WishIsThere();
    }
    if (IsReadUnderWay()) return;
    Values().pictureLoading = true;
    archiveShown_ = false;
    listArchiveFile_.Clear();
    const int selected = listFileName_.Selected();
    if (selected >= 0) {
        const std::wstring path = listFileName_.Item(selected);
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
    TellNotShown(KindTag(kFileUnknown) + name);
}

void frmControl::ShowEmptyList() {
    ShowReasonFor(window_, kEmptyList);
    shownPath_.clear();
    failure_.clear();
    ShowNoArchive();
    TellNotShown({});
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
    ShownFile shown;
    {
        const Busy busy(*this, kReading);
        loadingPath_ = path;
        passedBy_ = false;
        TellLoading(kTagLoading + name);
        shown = Show(name, [&] { return ShowFile(path, window_, *this); });
        loadingPath_.clear();
        loadingText_.clear();
        failure_ = shown.failure;
        passedBy_ = shown.passedBy;
        shownPath_ = path;
        if (IsPictureKind(shown.kind)) {
            const std::wstring tail = PictureInfoTail();
            window_.SetPictureSource({name, shown.pluginName, path});
            TellInfo(TagOf(shown) + name + tail);
            TellShown(kTagShown + name + tail);
        } else {
            TellNotShown(TagOf(shown) + name);
        }
        archiveShown_ = shown.kind == kFileArchive && listArchiveFile_.Count() > 0;
        archivePath_ = path;
    }
    if (shown.kind != kFileArchive) {
        ShowNoArchive();
    } else if (archiveShown_ && !Values().quitRequested) {
        listArchiveFile_.Select(0);
    }
    window_.pictureView().Refresh();
}

void frmControl::listArchiveFile_Click() {
    if (!archiveShown_ || listArchiveFile_.Selected() < 0) return;
    if (IsLoading()) {
        // The members are those of the file that is being viewed, whatever was clicked since.
        if (wishes_.file) listFileName_.MarkSelected(IndexOf(archivePath_));
        wishes_.Click(false, true);
        return WishIsThere();
    }
    if (IsReadUnderWay()) return;
    Values().pictureLoading = true;
    ShowListedMember();
    EndLoad();
}

void frmControl::ShowListedMember() {
    const std::wstring archive = archivePath_;
    const std::wstring archiveName = FileNameOf(archive);
    const int selected = listArchiveFile_.Selected();
    const int32_t position = listArchiveFile_.ItemData(selected);
    const std::wstring member = FileNameOf(listArchiveFile_.Item(selected));
    const std::wstring place = KindTag(kFileArchive) + archiveName + L" - ";
    ShownFile shown;
    {
        const Busy busy(*this, kReading);
        TellLoading(place + kTagLoading + member);
        shown = Show(member, [&] { return ShowArchiveMember(archive, position, window_); });
        loadingText_.clear();
        window_.pictureView().Refresh();
    }
    if (IsPictureKind(shown.kind)) {
        const std::wstring tail = PictureInfoTail();
        window_.SetPictureSource({member, shown.pluginName, archive});
        TellInfo(place + TagOf(shown) + member + tail);
        TellShown(kTagShown + archiveName + L" - " + member + archiveName + tail);
    } else {
        TellNotShown(place + TagOf(shown) + member);
    }
}

// No message box may stop a show.
std::wstring frmControl::Failure() const {
    return player_.IsPlaying() ? std::wstring() : failure_;
}

void frmControl::EndLoad() {
    Values().pictureLoading = false;
    window_.CloseIfAsked();
}

}  // namespace tessary
