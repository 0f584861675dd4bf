// Keeping the user from losing what is under way when the session ends.
#pragma once

#include <windows.h>

#include <thread>

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
    static LRESULT CALLBACK Procedure(HWND watch, UINT message, WPARAM wParam, LPARAM lParam);
    void Watch();

    HWND window_;
    DWORD thread_ = GetCurrentThreadId();
    UniqueEvent done_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    UniqueEvent ready_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    HWND watch_ = nullptr;  // belongs to the watcher
    std::thread watcher_;   // last: it uses the others
};

// Whether this window answers no when the system asks for the session's end (WM_QUERYENDSESSION).
bool IsSessionHeld(HWND window);

}  // namespace tessary
