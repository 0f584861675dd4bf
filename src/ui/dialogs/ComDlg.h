// The system's dialog for opening files.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tessary {

// What a file dialog is asked with.
struct FileDialogRequest {
    std::wstring filter;  // pairs of description and patterns, all divided by `|`
    std::wstring initDir;
    DWORD flags = 0;        // the system's OFN_…
    std::wstring fileName;  // the answer
};

class ComDlg {
  public:
    void SetFilter(std::wstring filter) { request_.filter = std::move(filter); }
    // The start folder; empty or vanished: the system's choice.
    void SetInitDir(std::wstring folder) { request_.initDir = std::move(folder); }
    void SetFlags(DWORD flags) { request_.flags = flags; }

    // Shows the dialog over `owner`. False when the user cancels, and when the dialog fails, which
    // the user has been told then; the file name is empty in both cases.
    bool ShowOpen(HWND owner);

    // The chosen file's full path. Several chosen files (OFN_ALLOWMULTISELECT): the folder and the
    // names, divided by NULs.
    const std::wstring& FileName() const { return request_.fileName; }

  private:
    bool ShowSystemDialog(HWND owner);

    FileDialogRequest request_;
};

// Answers file dialogs instead of the user: true with the file name filled in stands for OK. An
// empty function gives them back to the user.
using FileDialogResponder = std::function<bool(FileDialogRequest& request)>;
void SetFileDialogResponder(FileDialogResponder responder);

}  // namespace tessary
