// A timer whose ticks arrive as calls.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

namespace tessary {

// Off at first. Ticks never nest: while one is being handled, and the handler lets messages run,
// further ones are left out.
class Timer {
  public:
    explicit Timer(std::function<void()> tick);
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer();

    // Ticks every `milliseconds` from now on, also when it already ran at another interval. False
    // when the system has no timer left.
    bool Start(UINT milliseconds);
    void Stop();
    bool IsRunning() const { return id_ != 0; }

  private:
    // Outlives the timer while a tick is being handled that ends it.
    struct Handler {
        std::function<void()> tick;
        bool ticking = false;
    };

    static void CALLBACK Procedure(HWND window, UINT message, UINT_PTR id, DWORD time);

    std::shared_ptr<Handler> handler_;
    UINT_PTR id_ = 0;
};

}  // namespace tessary
