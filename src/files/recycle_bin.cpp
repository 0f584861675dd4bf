#include "files/recycle_bin.h"

#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>
#include <shobjidl.h>

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "app/base/com_object.h"
#include "app/base/counted_object.h"
#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"

namespace tessary {
namespace {

// Without questions, but for the one about a file that the bin does not take: the answer to that
// is never taken for granted.
constexpr DWORD kQuietly =
    FOF_ALLOWUNDO | FOF_NOCONFIRMATION | FOF_WANTNUKEWARNING | FOF_SILENT | FOF_NOERRORUI;
constexpr DWORD kSinceWindows8 = FOFX_ADDUNDORECORD | FOFX_RECYCLEONDELETE;

constexpr UINT kOriginalFolderColumn = 1;  // of the bin's folder
constexpr UINT kFirstCommand = 1;
constexpr DWORD kBackMilliseconds = 5000;  // some systems put it back behind the call's end
constexpr DWORD kLookAgainMilliseconds = 20;

BinCalls& Calls() {
    static BinCalls calls;
    return calls;
}

struct FreeTaskMemory {
    void operator()(void* block) const { CoTaskMemFree(block); }
};
using UniqueText = std::unique_ptr<wchar_t, FreeTaskMemory>;
using UniqueItemId = std::unique_ptr<std::remove_pointer_t<PIDLIST_ABSOLUTE>, FreeTaskMemory>;

UniqueInterface<IShellItem> ItemOf(const std::wstring& path) {
    void* item = nullptr;
    const HRESULT found =
        SHCreateItemFromParsingName(path.c_str(), nullptr, __uuidof(IShellItem), &item);
    return UniqueInterface<IShellItem>(FAILED(found) ? nullptr : static_cast<IShellItem*>(item));
}

// Refuses what would be deleted for good, and remembers where the file came to lie.
class BinSink final : public Counted<IFileOperationProgressSink> {
  public:
    std::wstring binName;
    HRESULT result = S_OK;
    bool wasRefused = false;
    bool wasDeleted = false;

    HRESULT STDMETHODCALLTYPE PreDeleteItem(DWORD flags, IShellItem*) override {
        if ((flags & TSF_DELETE_RECYCLE_IF_POSSIBLE) != 0) return S_OK;
        wasRefused = true;
        return E_ABORT;
    }
    HRESULT STDMETHODCALLTYPE PostDeleteItem(DWORD, IShellItem*, HRESULT deleted,
                                             IShellItem* inBin) override {
        result = deleted;
        wasDeleted = SUCCEEDED(deleted);
        wchar_t* name = nullptr;
        if (inBin == nullptr || FAILED(inBin->GetDisplayName(SIGDN_DESKTOPABSOLUTEPARSING, &name)))
            return S_OK;
        const UniqueText owned(name);
        Trapped([&] { binName = name; });
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE StartOperations() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE FinishOperations(HRESULT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PreRenameItem(DWORD, IShellItem*, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostRenameItem(DWORD, IShellItem*, LPCWSTR, HRESULT,
                                             IShellItem*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PreMoveItem(DWORD, IShellItem*, IShellItem*, LPCWSTR) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PostMoveItem(DWORD, IShellItem*, IShellItem*, LPCWSTR, HRESULT,
                                           IShellItem*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PreCopyItem(DWORD, IShellItem*, IShellItem*, LPCWSTR) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PostCopyItem(DWORD, IShellItem*, IShellItem*, LPCWSTR, HRESULT,
                                           IShellItem*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE PreNewItem(DWORD, IShellItem*, LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PostNewItem(DWORD, IShellItem*, LPCWSTR, LPCWSTR, DWORD, HRESULT,
                                          IShellItem*) override {
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE UpdateProgress(UINT, UINT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResetTimer() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE PauseTimer() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ResumeTimer() override { return S_OK; }
};

DWORD ErrorOf(HRESULT result) {
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? DWORD{HRESULT_CODE(result)}
                                                      : DWORD{ERROR_ACCESS_DENIED};
}

BinResult Failed(DWORD error, const std::wstring& path) {
    SetLastError(error);
    return {.outcome = Binning::kFailed, .error = LastWriteError(path)};
}

// Whether others have the file open in a way that keeps it where it is: the system would ask the
// user in its own words, whether it is to be deleted for good instead.
bool IsHeld(const std::wstring& path) {
    const UniqueFile opened(CreateFileW(
        ExtendedPath(path).c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return !opened && GetLastError() == ERROR_SHARING_VIOLATION;
}

// Nothing where the system has no such operations.
std::optional<BinResult> PutByOperation(const std::wstring& path) {
    const auto operation = Create<IFileOperation>(CLSID_FileOperation);
    if (operation == nullptr) return std::nullopt;
    if (FAILED(operation->SetOperationFlags(kQuietly | kSinceWindows8)) &&
        FAILED(operation->SetOperationFlags(kQuietly))) {
        return std::nullopt;
    }
    const auto item = ItemOf(path);
    if (item == nullptr) return BinResult{.outcome = Binning::kNoBin};
    const UniqueInterface<BinSink> sink(new BinSink);
    HRESULT done = operation->DeleteItem(item.get(), sink.get());
    if (SUCCEEDED(done)) done = operation->PerformOperations();
    BOOL isAborted = FALSE;
    operation->GetAnyOperationsAborted(&isAborted);
    if (sink->wasRefused) return BinResult{.outcome = Binning::kNoBin};
    if (!PathExists(path) && sink->wasDeleted) {
        return BinResult{.outcome = Binning::kDone, .file = {path, sink->binName}};
    }
    const HRESULT why = FAILED(sink->result) ? sink->result : done;
    if (FAILED(why) && why != E_ABORT && why != HRESULT_FROM_WIN32(ERROR_CANCELLED)) {
        return Failed(ErrorOf(why), path);
    }
    return BinResult{.outcome = Binning::kStopped};
}

// Such a system moves no read-only file into the bin of another drive.
BinResult PutByShell(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isReadOnly =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
    if (isReadOnly) SetFileAttributesW(path.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY});
    const std::wstring list = path + L'\0';  // ends with two
    SHFILEOPSTRUCTW operation{};
    operation.wFunc = FO_DELETE;
    operation.pFrom = list.c_str();
    operation.fFlags = static_cast<FILEOP_FLAGS>(kQuietly);
    const int error = SHFileOperationW(&operation);
    if (!PathExists(path)) return {.outcome = Binning::kDone, .file = {path, {}}};
    if (isReadOnly) SetFileAttributesW(path.c_str(), attributes);
    if (error == 0 || operation.fAnyOperationsAborted) return {.outcome = Binning::kStopped};
    return Failed(static_cast<DWORD>(error), path);
}

// --- Out of the bin ---

// Empty where the folder does not tell.
std::wstring TextOf(STRRET& told, PCUITEMID_CHILD item) {
    wchar_t* text = nullptr;
    if (FAILED(StrRetToStrW(&told, item, &text))) return {};
    const UniqueText owned(text);
    return text;
}

std::wstring NameIn(IShellFolder2& bin, PCUITEMID_CHILD item, SHGDNF kind) {
    STRRET told{};
    if (FAILED(bin.GetDisplayNameOf(item, kind, &told))) return {};
    return TextOf(told, item);
}

std::wstring OriginalFolderIn(IShellFolder2& bin, PCUITEMID_CHILD item) {
    SHELLDETAILS details{};
    if (FAILED(bin.GetDetailsOf(item, kOriginalFolderColumn, &details))) return {};
    return TextOf(details.str, item);
}

UniqueInterface<IShellFolder2> OpenBin() {
    PIDLIST_ABSOLUTE id = nullptr;
    if (FAILED(SHGetFolderLocation(nullptr, CSIDL_BITBUCKET, nullptr, 0, &id))) return nullptr;
    const UniqueItemId owned(id);
    IShellFolder* found = nullptr;
    if (FAILED(SHGetDesktopFolder(&found))) return nullptr;
    const UniqueInterface<IShellFolder> desktop(found);
    void* bin = nullptr;
    if (FAILED(desktop->BindToObject(id, nullptr, __uuidof(IShellFolder2), &bin))) return nullptr;
    return UniqueInterface<IShellFolder2>(static_cast<IShellFolder2*>(bin));
}

// The one that the bin knows by that name; else the last one that lay there under its own.
UniqueItemId FindIn(IShellFolder2& bin, const BinnedFile& file) {
    IEnumIDList* found = nullptr;
    constexpr SHCONTF kAll = SHCONTF_FOLDERS | SHCONTF_NONFOLDERS | SHCONTF_INCLUDEHIDDEN;
    if (bin.EnumObjects(nullptr, kAll, &found) != S_OK) return nullptr;
    const UniqueInterface<IEnumIDList> items(found);
    const std::wstring folder = RemoveBackslash(FolderOf(file.path));
    const std::wstring name = FileNameOf(file.path);
    UniqueItemId last;
    PITEMID_CHILD next = nullptr;
    while (items->Next(1, &next, nullptr) == S_OK) {
        UniqueItemId item(reinterpret_cast<PIDLIST_ABSOLUTE>(next));
        const std::wstring known = NameIn(bin, next, SHGDN_FORPARSING);
        if (!file.binName.empty()) {
            if (EqualsIgnoreCase(known, file.binName)) return item;
        } else if (EqualsIgnoreCase(FileNameOf(known), name) &&
                   EqualsIgnoreCase(RemoveBackslash(AddBackslash(OriginalFolderIn(bin, next))),
                                    folder)) {
            last = std::move(item);
        }
    }
    return last;
}

bool Invoke(IContextMenu& menu, const char* verb) {
    CMINVOKECOMMANDINFO command{};
    command.cbSize = sizeof(command);
    command.fMask = CMIC_MASK_FLAG_NO_UI;
    command.lpVerb = verb;
    command.nShow = SW_SHOWNORMAL;
    return SUCCEEDED(menu.InvokeCommand(&command));
}

bool IsBackWithin(const std::wstring& path, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    while (!PathExists(path)) {
        if (GetTickCount() - start >= milliseconds) return false;
        Sleep(kLookAgainMilliseconds);
    }
    return true;
}

// By its name; where the system knows no names of commands it is the first of the menu.
bool Restore(IShellFolder2& bin, PCUITEMID_CHILD item, const std::wstring& path) {
    void* found = nullptr;
    if (FAILED(bin.GetUIObjectOf(nullptr, 1, &item, __uuidof(IContextMenu), nullptr, &found)))
        return false;
    const UniqueInterface<IContextMenu> menu(static_cast<IContextMenu*>(found));
    const UniqueMenu shown(CreatePopupMenu());
    menu->QueryContextMenu(shown.Get(), 0, kFirstCommand, 0x7FFF, CMF_NORMAL);
    const UINT first = GetMenuItemID(shown.Get(), 0);
    char verb[64]{};
    const bool hasNames =
        first != static_cast<UINT>(-1) && first >= kFirstCommand &&
        SUCCEEDED(menu->GetCommandString(first - kFirstCommand, GCS_VALIDATEA, nullptr, verb, 64));
    if (!hasNames && first != static_cast<UINT>(-1) && first >= kFirstCommand) {
        Invoke(*menu, MAKEINTRESOURCEA(first - kFirstCommand));
        return IsBackWithin(path, kBackMilliseconds);
    }
    return Invoke(*menu, "undelete") && IsBackWithin(path, kBackMilliseconds);
}

}  // namespace

void SetBinCalls(BinCalls calls) {
    Calls() = std::move(calls);
}

bool MayHaveBin(const std::wstring& path) {
    if (Calls().mayHave) return Calls().mayHave(path);
    const std::wstring full = FullPathOf(path);
    wchar_t root[MAX_PATH];
    if (full.size() >= MAX_PATH || full.starts_with(LR"(\\)") ||
        !GetVolumePathNameW(full.c_str(), root, MAX_PATH)) {
        return false;
    }
    return GetDriveTypeW(root) == DRIVE_FIXED;
}

BinResult PutIntoBin(const std::wstring& path) {
    if (Calls().put) return Calls().put(path);
    if (!PathExists(path)) return {.outcome = Binning::kGone};
    if (!MayHaveBin(path)) return {.outcome = Binning::kNoBin};
    const ComSession session;
    const std::wstring full = FullPathOf(path);
    if (IsHeld(full)) return Failed(ERROR_SHARING_VIOLATION, full);
    if (std::optional<BinResult> result = PutByOperation(full)) return *std::move(result);
    return PutByShell(full);
}

Unbinning TakeOutOfBin(const BinnedFile& file) {
    if (Calls().takeOut) return Calls().takeOut(file);
    if (PathExists(file.path)) return Unbinning::kOccupied;
    const ComSession session;
    const auto bin = OpenBin();
    if (bin == nullptr) return Unbinning::kFailed;
    const UniqueItemId item = FindIn(*bin, file);
    if (item == nullptr) return Unbinning::kNotThere;
    return Restore(*bin, reinterpret_cast<PCUITEMID_CHILD>(item.get()), file.path)
               ? Unbinning::kDone
               : Unbinning::kFailed;
}

}  // namespace tessary
