// The system's dialogs for opening and saving files.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tessary {

// What a file dialog is asked with.
struct FileDialogRequest {
    bool save = false;
    std::wstring filter;  // pairs of description and patterns, all divided by `|`
    std::wstring initDir;
    std::wstring fileName;  // that the dialog begins with
    std::wstring title;
    std::wstring defaultExtension;  // without its dot, for names typed without one
    DWORD flags = 0;                // the system's OFN_…
    int filterIndex = 1;            // of the chosen pair, from 1
};

class ComDlg {
  public:
    void SetFilter(std::wstring filter) { request_.filter = std::move(filter); }
    // The start folder; empty or vanished: the system's choice.
    void SetInitDir(std::wstring folder) { request_.initDir = std::move(folder); }
    void SetFlags(DWORD flags) { request_.flags = flags; }
    void SetFileName(std::wstring name) { request_.fileName = std::move(name); }
    void SetTitle(std::wstring title) { request_.title = std::move(title); }
    void SetDefaultExtension(std::wstring extension) {
        request_.defaultExtension = std::move(extension);
    }
    void SetFilterIndex(int index) { request_.filterIndex = index; }

    // Show the dialog over `owner`. False when the user cancels, and when the dialog fails, which
    // the user has been told then; the file name is empty in both cases.
    bool ShowOpen(HWND owner) { return Show(owner, false); }
    bool ShowSave(HWND owner) { return Show(owner, true); }

    // The chosen file's full path. Several chosen files (OFN_ALLOWMULTISELECT): the folder and the
    // names, divided by NULs.
    const std::wstring& FileName() const { return request_.fileName; }

    // Number of the pair of the filter that was chosen, from 1.
    int FilterIndex() const { return request_.filterIndex; }

  private:
    bool Show(HWND owner, bool save);
    bool ShowSystemDialog(HWND owner);

    FileDialogRequest request_;
};

// Answers file dialogs instead of the user: true with the file name (and the filter's index) filled
// in stands for OK. An empty function gives them back to the user.
using FileDialogResponder = std::function<bool(FileDialogRequest& request)>;
void SetFileDialogResponder(FileDialogResponder responder);

}  // namespace tessary
