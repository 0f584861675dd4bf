// The clipboard, which all programs share: one that has it open keeps the others out, and one that
// is hung may hold up whoever replaces what it has put there. So it is used on a thread of its own
// where the user would have to wait for that.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "app/base/handles.h"

namespace tessary {

// How long another program's use of the clipboard is waited for. Clipboard histories and remote
// desktops look at all that is new on it before others can.
inline constexpr DWORD kClipboardPatienceMilliseconds = 1500;

// Keeps the clipboard open for its own life, on this thread. Where another program has it open,
// waits with growing pauses for as long as the patience lasts.
class ClipboardSession {
  public:
    explicit ClipboardSession(HWND owner);
    ClipboardSession(const ClipboardSession&) = delete;
    ClipboardSession& operator=(const ClipboardSession&) = delete;
    ~ClipboardSession();

    explicit operator bool() const { return open_; }
    // The program that did not let it go: its file name, or its window's title; empty when nobody
    // knows, and when the clipboard is open.
    const std::wstring& Holder() const { return holder_; }

  private:
    bool open_ = false;
    std::wstring holder_;
};

// Whether a call for the clipboard failed because there was no memory; asked right behind it.
bool WasMemoryShort();

enum class ClipboardFailure { kNone, kInUse, kNoMemory, kRefused };

// What became of an attempt to copy.
struct ClipboardResult {
    ClipboardFailure failure = ClipboardFailure::kNone;
    std::wstring holder = {};  // who uses it; may be empty

    explicit operator bool() const { return failure == ClipboardFailure::kNone; }
};

// A sentence for the user: that the program of that name (empty: some program) has the clipboard.
std::wstring ClipboardInUseText(const std::wstring& holder);

// Tells the user that nothing was copied, and why.
void TellCopyFailure(const ClipboardResult& result);

// A block in one of the clipboard's formats (CF_… or a registered one).
struct ClipboardItem {
    UINT format;
    UniqueGlobal block;
};

// Replaces what is on the clipboard with the first item, and puts the others beside it as far as
// the system takes them. Its former content may be gone although that fails. Windows are painted
// while it takes its time, and what the user does waits; after about two seconds it is given up,
// and may still happen.
ClipboardResult PutOnClipboard(HWND owner, std::vector<ClipboardItem> items);

// Replaces what is on the clipboard with a text; tells the user when that fails.
void CopyTextToClipboard(HWND owner, const std::wstring& text);

}  // namespace tessary
