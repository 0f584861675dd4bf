#include "ui/form/show_in_folder.h"

#include <shellapi.h>
#include <shlobj.h>

#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

std::function<void(const std::wstring&)>& Opener() {
    static std::function<void(const std::wstring&)> opener;
    return opener;
}

// In the folder's own window where there is one already. Needs COM, as dropping onto the list does.
bool SelectInFolder(const std::wstring& path) {
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(SHParseDisplayName(path.c_str(), nullptr, &item, 0, nullptr))) return false;
    const bool isShown = SUCCEEDED(SHOpenFolderAndSelectItems(item, 0, nullptr, 0));
    CoTaskMemFree(item);
    return isShown;
}

// Where the file itself is gone.
bool OpenFolder(HWND owner, const std::wstring& folder) {
    const auto result = reinterpret_cast<INT_PTR>(ShellExecuteW(
        GetAncestor(owner, GA_ROOT), nullptr, folder.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    return result > 32;  // errors are told by small numbers
}

}  // namespace

void ShowInFolder(HWND owner, const std::wstring& path) {
    if (Opener()) {
        Opener()(path);
        return;
    }
    if (!SelectInFolder(path) && !OpenFolder(owner, FolderOf(path))) {
        ShowMessageBox(L"フォルダ " + FolderOf(path) + L" を開けません。", MB_ICONEXCLAMATION);
    }
}

void SetFolderOpener(std::function<void(const std::wstring& path)> opener) {
    Opener() = std::move(opener);
}

}  // namespace tessary
