// The system's dialog for saving a file, with a button of ours for the details of the chosen type.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace tessary {

struct SaveFileType {
    std::wstring description;
    std::wstring extension;  // without its dot
};

struct SaveDialogRequest {
    std::wstring folder;  // to begin in; empty or vanished: the system's choice
    std::wstring name;    // to begin with
    std::vector<SaveFileType> types;
    int type = 1;  // the chosen one, from 1
    std::wstring buttonCaption;
    // The button was pressed, in the dialog of that window.
    std::function<void(HWND dialog, int type)> onButton;
    // The name that the edit field has after the user has chosen another type.
    std::function<std::wstring(const std::wstring& name, int type)> renamed;
    // The user has chosen that full path, with or without an extension, and type. False lets him go
    // on choosing.
    std::function<bool(const std::wstring& path, int type)> accept;
};

// Shows the dialog over `owner`. True when a choice was accepted. False when the user cancels, and
// when the dialog fails, which he has been told then.
bool ShowSaveDialog(HWND owner, const SaveDialogRequest& request);

}  // namespace tessary
