// How far a long operation is, on the taskbar button of its window.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

struct ITaskbarList3;

namespace tessary {

class ComSession;

// For its own life the button of a window, or of its nearest owner that has one, shows progress,
// where the system has such buttons; elsewhere this does nothing.
class TaskbarProgress {
  public:
    // The window must outlive this.
    explicit TaskbarProgress(HWND window);
    TaskbarProgress(const TaskbarProgress&) = delete;
    TaskbarProgress& operator=(const TaskbarProgress&) = delete;
    ~TaskbarProgress();

    // Of nothing: that it is going on.
    void SetProgress(int32_t position, int32_t maximum);

  private:
    struct Release {
        void operator()(ITaskbarList3* list) const;
    };

    HWND window_;
    std::unique_ptr<ComSession> session_;
    std::unique_ptr<ITaskbarList3, Release> list_;
};

}  // namespace tessary
