// The clipboard.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// Keeps the clipboard open for its own life. Another program may hold it for a moment, so opening
// is tried a few times.
class ClipboardSession {
  public:
    explicit ClipboardSession(HWND owner);
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;
    ~ClipboardSession();

    explicit operator bool() const { return open_; }

  private:
    bool open_ = false;
};

// Replaces what is on the clipboard with a text. False when that fails.
bool CopyTextToClipboard(HWND owner, const std::wstring& text);

}  // namespace tessary
