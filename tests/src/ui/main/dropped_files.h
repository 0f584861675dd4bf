// The data object of a drag of files, as the shell hands it to a drop target.
#pragma once

#include <ole2.h>
#include <shlobj.h>

#include <cstring>
#include <string>
#include <vector>

#include "ui/form/clipboard.h"

namespace tessary::test {

// The object is OLE's own, made from a clipboard that holds the files.
class DroppedFiles final {
  public:
    DroppedFiles(HWND clipboardOwner, const std::vector<std::wstring>& paths) {
        std::wstring names;
        for (const std::wstring& path : paths)
            names += path + L'\0';
        const size_t bytes = (names.size() + 1) * sizeof(wchar_t);
        const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + bytes);
        auto* const header = static_cast<DROPFILES*>(GlobalLock(block));
        *header = {.pFiles = sizeof(DROPFILES), .pt = {}, .fNC = FALSE, .fWide = TRUE};
        std::memcpy(header + 1, names.c_str(), bytes);
        GlobalUnlock(block);
        {
            const ClipboardSession clipboard(clipboardOwner);
            EmptyClipboard();
            SetClipboardData(CF_HDROP, block);
        }
        OleGetClipboard(&data_);
    }
    ~DroppedFiles() { data_->Release(); }
    DroppedFiles(const DroppedFiles&) = delete;
    DroppedFiles& operator=(const DroppedFiles&) = delete;

    IDataObject* Get() const { return data_; }

  private:
    IDataObject* data_ = nullptr;
};

}  // namespace tessary::test
