// Keeping the user from losing what is under way when the session ends.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>

#include "ui/form/worker.h"

namespace tessary {

// For its own life the session does not end without a question: the system shows the user the
// reason, and he may let it end all the same. Then, and where nobody is asked, all windows of this
// thread are told first (WM_ENDSESSION), and the system is kept waiting until this object ends, a
// few seconds at most: what is under way has that time to stop where nothing is lost.
class SessionHold {
  public:
    // The outermost owner of `window` holds the session; it must ask IsSessionHeld. `reason` is
    // shown by the system, as "画像を変換しています".
    SessionHold(HWND window, const wchar_t* reason);
    SessionHold(const SessionHold&) = delete;
    SessionHold& operator=(const SessionHold&) = delete;
    ~SessionHold();

  private:
    struct Watch;

    HWND window_;
    // Its thread's too: one that a plug-in's crash keeps from beginning or ending is left behind.
    std::shared_ptr<Watch> watch_;
    std::optional<Worker> watcher_;
};

// Whether this window answers no when the system asks for the session's end (WM_QUERYENDSESSION).
bool IsSessionHeld(HWND window);

}  // namespace tessary
