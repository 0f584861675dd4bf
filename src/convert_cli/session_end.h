// The end of the user's session, which the system announces to windows only.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace tessary {

// For its own life a thread listens with a hidden window. When the session ends, the system lets
// the process live until this object is destroyed, as far as its patience goes.
class SessionEnd {
  public:
    // `tell` is called on the listening thread.
    explicit SessionEnd(std::function<void()> tell);
    SessionEnd(const SessionEnd&) = delete;
    SessionEnd& operator=(const SessionEnd&) = delete;
    ~SessionEnd();

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    HWND MakeWindow();
    void Listen();
    void StayUntilOver();

    std::function<void()> tell_;
    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::promise<HWND> window_;  // null: it could not be made
    std::thread thread_;         // last: it uses the others
};

}  // namespace tessary
