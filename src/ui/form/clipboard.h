// The clipboard.
#pragma once

#include <windows.h>

#include <span>
#include <string>

#include "app/base/handles.h"

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

// A block in one of the clipboard's formats (CF_… or a registered one).
struct ClipboardItem {
    UINT format;
    UniqueGlobal block;
};

// Replaces what is on the clipboard with the first item, and puts the others beside it as far as
// the system takes them. False when the first is not on the clipboard then; its former content may
// be gone. What the clipboard takes is its own from then on.
bool PutOnClipboard(HWND owner, std::span<ClipboardItem> items);

// Replaces what is on the clipboard with a text. False when that fails.
bool CopyTextToClipboard(HWND owner, const std::wstring& text);

}  // namespace tessary
