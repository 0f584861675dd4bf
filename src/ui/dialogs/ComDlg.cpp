#include "ui/dialogs/ComDlg.h"

#include <windows.h>
// The dialogs need the types of windows.h.
#include <cderr.h>
#include <commdlg.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "app/base/message_box.h"
#include "app/base/task_modal.h"

namespace tessary {
namespace {

// Room for the names of a multiple selection, in characters: tens of thousands. (The dialog could
// be given more room while it is open, but only in the shape that it had twenty years ago.)
constexpr size_t kNamesRoom = size_t{4} * 1024 * 1024;

FileDialogResponder& Responder() {
    static FileDialogResponder responder;
    return responder;
}

// The dialog changes the process's current folder, which would keep a medium from being taken out.
class KeptCurrentFolder {
  public:
    KeptCurrentFolder() : folder_(GetCurrentDirectoryW(0, nullptr), L'\0') {
        GetCurrentDirectoryW(static_cast<DWORD>(folder_.size()), folder_.data());
    }
    KeptCurrentFolder(const KeptCurrentFolder&) = delete;
    KeptCurrentFolder& operator=(const KeptCurrentFolder&) = delete;
    ~KeptCurrentFolder() { SetCurrentDirectoryW(folder_.c_str()); }

  private:
    std::wstring folder_;
};

// Pairs divided by NULs, with one more at the end.
std::wstring SystemFilter(std::wstring filter) {
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    filter.append(2, L'\0');
    return filter;
}

// The system's answer ends with one NUL, a multiple one with two.
std::wstring NamesIn(const std::vector<wchar_t>& buffer, bool multiple) {
    auto end = std::find(buffer.begin(), buffer.end(), L'\0');
    while (multiple && end != buffer.end() && end + 1 != buffer.end() && *(end + 1) != L'\0') {
        end = std::find(end + 1, buffer.end(), L'\0');
    }
    return {buffer.begin(), end};
}

void TellFailure(DWORD error) {
    if (error == FNERR_BUFFERTOOSMALL) {
        ShowMessageBox(
            L"選択されたファイルが多すぎます。\r\nフォルダごと開くか、何回かに分けて開いてください"
            L"。",
            MB_ICONEXCLAMATION);
    } else {
        ShowMessageBox(L"ファイルを選択するダイアログを表示できません。(エラー " +
                           std::to_wstring(error) + L")",
                       MB_ICONEXCLAMATION);
    }
}

}  // namespace

void SetFileDialogResponder(FileDialogResponder responder) {
    Responder() = std::move(responder);
}

bool ComDlg::ShowOpen(HWND owner) {
    const bool chosen = Responder() ? Responder()(request_) : ShowSystemDialog(owner);
    if (!chosen) request_.fileName.clear();
    return chosen;
}

bool ComDlg::ShowSystemDialog(HWND owner) {
    const std::wstring filter = SystemFilter(request_.filter);
    const bool multiple = (request_.flags & OFN_ALLOWMULTISELECT) != 0;
    std::vector<wchar_t> names(multiple ? kNamesRoom : 0x8000);

    OPENFILENAMEW dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = request_.filter.empty() ? nullptr : filter.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = names.data();
    dialog.nMaxFile = static_cast<DWORD>(names.size());
    dialog.lpstrInitialDir = request_.initDir.empty() ? nullptr : request_.initDir.c_str();
    dialog.Flags = request_.flags | OFN_EXPLORER;

    const TaskModal others(owner);
    const KeptCurrentFolder current;
    if (!GetOpenFileNameW(&dialog)) {
        if (const DWORD error = CommDlgExtendedError(); error != 0) TellFailure(error);
        return false;
    }
    request_.fileName = NamesIn(names, multiple);
    return true;
}

}  // namespace tessary
