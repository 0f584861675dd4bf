// The control bar's lists: filling them, what a click shows, and stepping.
#include <algorithm>
#include <cstdlib>
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

// How long a load takes before the toolbar goes grey.
constexpr UINT kLongLoadMilliseconds = 200;

// How long a search for the next picture goes on silently, and how often there is news then.
constexpr DWORD kLongSearchMilliseconds = 300;
constexpr int kFilesPerNews = 20;

// What the user is told of a read that takes long.
constexpr wchar_t kReading[] = L"読み込んでいます";
constexpr wchar_t kSearching[] = L"画像を探しています";

constexpr wchar_t kNotArchive[] = L"Not Archive File.";

constexpr wchar_t kEmptyList[] = L"表示するファイルがありません。";
constexpr wchar_t kVanished[] = L" が見つかりません。\r\n移動または削除された可能性があります。";

const wchar_t* TagOf(const ShownFile& shown) {
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
    if (bar_.inBurst_) return;
    if (!bar_.player_.IsPlaying()) pointer_.emplace();
    bar_.DisableParts();
}

frmControl::Busy::~Busy() {
    reading_.reset();
    if (--bar_.busy_ == 0 && !bar_.inBurst_) bar_.EnableParts(focused_);
}

frmControl::Burst::Burst(frmControl& bar) : bar_(bar), focused_(GetFocus()) {
    files_.emplace(bar.listFileName_);
    members_.emplace(bar.listArchiveFile_);
    bar_.inBurst_ = true;
    bar_.listFileName_.SetEnabled(false);
    bar_.listArchiveFile_.SetEnabled(false);
}

frmControl::Burst::~Burst() {
    bar_.inBurst_ = false;
    if (bar_.lateInfo_) bar_.TellInfo(*std::exchange(bar_.lateInfo_, {}));
    if (bar_.lateShown_) bar_.TellShown(*std::exchange(bar_.lateShown_, {}));
    files_.reset();
    members_.reset();
    bar_.ShowFoldedOrNot();  // the bar may have been folded meanwhile
    bar_.EnableParts(focused_);
}

// The buttons refuse clicks at once, but would blink if they went grey for every short load.
void frmControl::DisableParts() {
    longLoad_.Start(kLongLoadMilliseconds);
    listFileName_.SetEnabled(false);
    listArchiveFile_.SetEnabled(false);
}

void frmControl::EnableParts(HWND focused) {
    longLoad_.Stop();
    if (Handle() == nullptr) return;
    listFileName_.SetEnabled(true);
    listArchiveFile_.SetEnabled(archiveShown_);
    UpdateToolbar();
    // A disabled list lost the focus to the bar; keys are to go on where they were.
    if (GetFocus() == Handle()) FocusPart(focused);
}

void frmControl::TellInfo(const std::wstring& info) {
    if (inBurst_) {
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

// In the main window's status bar.
void frmControl::TellShown(const std::wstring& text) {
    if (inBurst_) {
        lateShown_ = text;
    } else {
        window_.SetPanelText(kShownFilePanel, text);
    }
}

// --- Filling ---

bool frmControl::SetFileList(std::span<const std::wstring> files) {
    if (busy_ > 0 || !Load(window_.Handle())) return false;
    FillFileList(files);
    EndLoad();
    if (Values().quitRequested) return false;
    if (listFileName_.Count() == 0) {
        ShowEmptyList();
        return false;
    }
    SetVisible(true);
    // The first file may keep the window from painting for long.
    RedrawWindow(Handle(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    listFileName_.Select(0);
    return true;
}

void frmControl::FillFileList(std::span<const std::wstring> files) {
    const Busy busy(*this, L"リストを更新しています");
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
    if (!inBurst_) ShowFoldedOrNot();  // the bar may have been folded meanwhile
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
    if (busy_ > 0) return;
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
    ShowNoArchive();
    TellNotShown(KindTag(kFileUnknown) + name);
}

void frmControl::ShowEmptyList() {
    ShowReasonFor(window_, kEmptyList);
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
    {
        const Busy busy(*this, kReading);
        TellNotShown(kTagLoading + name);
        // Some plug-ins let nothing be painted before they are done.
        if (!inBurst_) UpdateWindow(textFileInfo_.Handle());
        const ShownFile shown = Show(name, [&] { return ShowFile(path, window_, *this); });
        failure_ = shown.failure;
        if (IsPictureKind(shown.kind)) {
            const std::wstring tail = PictureInfoTail();
            window_.SetPictureSource({name, shown.pluginName});
            TellInfo(TagOf(shown) + name + tail);
            TellShown(kTagShown + name + tail);
        } else {
            TellNotShown(TagOf(shown) + name);
        }
        archiveShown_ = shown.kind == kFileArchive && listArchiveFile_.Count() > 0;
    }
    if (!archiveShown_) {
        ShowNoArchive();
    } else if (!Values().quitRequested) {
        listArchiveFile_.Select(0);
    }
    window_.pictureView().Refresh();
}

void frmControl::listArchiveFile_Click() {
    if (busy_ > 0 || !archiveShown_ || listArchiveFile_.Selected() < 0) return;
    Values().pictureLoading = true;
    ShowListedMember();
    EndLoad();
}

void frmControl::ShowListedMember() {
    const std::wstring archive = listFileName_.Item(listFileName_.Selected());
    const std::wstring archiveName = FileNameOf(archive);
    const int selected = listArchiveFile_.Selected();
    const int32_t position = listArchiveFile_.ItemData(selected);
    const std::wstring member = FileNameOf(listArchiveFile_.Item(selected));
    const std::wstring place = KindTag(kFileArchive) + archiveName + L" - ";
    ShownFile shown;
    {
        const Busy busy(*this, kReading);
        TellNotShown(place + kTagLoading + member);
        shown = Show(member, [&] { return ShowArchiveMember(archive, position, window_); });
        window_.pictureView().Refresh();
    }
    if (IsPictureKind(shown.kind)) {
        const std::wstring tail = PictureInfoTail();
        window_.SetPictureSource({member, shown.pluginName});
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

// --- Stepping ---

// The first entry of known kind from `start` on, in steps of 1 or -1; the index behind the end or
// -1 when there is none; nothing when the user has stopped the search.
std::optional<int> frmControl::FindKnown(int start, int step) {
    const Busy busy(*this, kSearching);
    const int stops = stops_;
    const std::wstring former = lateInfo_ ? *lateInfo_ : textFileInfo_.Text();
    const DWORD begin = GetTickCount();
    const int count = listFileName_.Count();
    const int total = step > 0 ? count - start : start + 1;
    std::optional<int> index = start;
    for (; *index >= 0 && *index < count; *index += step) {
        if (QueryFileKind(listFileName_.Item(*index)) != kFileUnknown) return index;
        if (GetTickCount() - begin >= kLongSearchMilliseconds && *index % kFilesPerNews == 0) {
            TellInfo(std::wstring(kSearching) + L" [ " + std::to_wstring(*index + 1) + L" / " +
                     std::to_wstring(count) + L" ]");
        }
        window_.TellProgress(std::abs(*index - start), total);
        if (!window_.Breathe() || stops != stops_) {
            index.reset();
            break;
        }
    }
    TellInfo(former);
    return index;
}

bool frmControl::ListIndexBackOne() {
    if (busy_ > 0) return false;
    if (archiveShown_ && listArchiveFile_.Selected() > 0) {
        listArchiveFile_.Select(listArchiveFile_.Selected() - 1);
        return true;
    }
    if (listFileName_.Selected() < 0) return false;
    const std::optional<int> found = FindKnown(listFileName_.Selected() - 1, -1);
    if (found) listFileName_.Select(*found);
    window_.CloseIfAsked();
    return found && *found >= 0;
}

bool frmControl::ListIndexForwardOne() {
    if (busy_ > 0) return false;
    if (archiveShown_ && listArchiveFile_.Selected() < listArchiveFile_.Count() - 1) {
        listArchiveFile_.Select(listArchiveFile_.Selected() + 1);
        return true;
    }
    const int count = listFileName_.Count();
    if (listFileName_.Selected() >= count - 1) return false;
    const std::optional<int> found = FindKnown(listFileName_.Selected() + 1, 1);
    if (found) listFileName_.Select(std::min(*found, count - 1));
    window_.CloseIfAsked();
    return found && *found < count;
}

}  // namespace tessary
