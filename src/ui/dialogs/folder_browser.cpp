#include "ui/dialogs/folder_browser.h"

#include <windows.h>
// The shell needs the types of windows.h.
#include <ole2.h>
#include <shlobj.h>

#include <memory>
#include <utility>

#include "app/base/paths.h"
#include "app/base/task_modal.h"

namespace tessary {
namespace {

// Characters that the system gives for a path, whatever the shell's limit is.
constexpr DWORD kPathRoom = 0x8000;

FolderBrowserResponder& Responder() {
    static FolderBrowserResponder responder;
    return responder;
}

struct Beginning {
    const std::wstring& title;
    std::wstring start;
};

int CALLBACK OnBrowser(HWND dialog, UINT message, LPARAM /*data*/, LPARAM beginning) {
    if (message != BFFM_INITIALIZED) return 0;
    const auto& begin = *reinterpret_cast<const Beginning*>(beginning);
    SetWindowTextW(dialog, begin.title.c_str());
    if (!begin.start.empty()) {
        SendMessageW(dialog, BFFM_SETSELECTIONW, TRUE,
                     reinterpret_cast<LPARAM>(begin.start.c_str()));
    }
    return 0;
}

struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

}  // namespace

void SetFolderBrowserResponder(FolderBrowserResponder responder) {
    Responder() = std::move(responder);
}

std::wstring BrowseForFolder(HWND owner, const std::wstring& title, const std::wstring& prompt,
                             const std::wstring& start) {
    if (Responder()) return Responder()(title, prompt, start);

    // The shell takes a folder by its plain name only.
    const bool isDrive = start.size() <= 3;
    const Beginning beginning{title,
                              isDrive || !start.ends_with(L'\\') ? start : RemoveBackslash(start)};
    BROWSEINFOW browse{};
    browse.hwndOwner = owner;
    browse.lpszTitle = prompt.c_str();
    browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    browse.lpfn = OnBrowser;
    browse.lParam = reinterpret_cast<LPARAM>(&beginning);

    const HRESULT ole = OleInitialize(nullptr);  // the dialog's present shape needs it
    std::wstring path;
    {
        const TaskModal others(owner);
        const std::unique_ptr<ITEMIDLIST, FreeTaskMemory> item(SHBrowseForFolderW(&browse));
        if (item) {
            path.resize(kPathRoom);
            const bool named =
                SHGetPathFromIDListEx(item.get(), path.data(), kPathRoom, GPFIDL_DEFAULT) != FALSE;
            path.resize(named ? wcslen(path.c_str()) : 0);
        }
    }
    if (SUCCEEDED(ole)) OleUninitialize();
    return path;
}

}  // namespace tessary
