// Message boxes of plug-ins, which nobody is there to answer.
#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace tessary {

// For its own life a thread looks for windows of host processes that this one has asked for
// something. Dialogs are answered as carefully as their buttons allow, other windows are asked to
// close after half a minute of one call.
class DialogWatch {
  public:
    // `tell` gets a line that names the plug-in and the window, on the watching thread.
    explicit DialogWatch(std::function<void(const std::wstring& line)> tell);
    DialogWatch(const DialogWatch&) = delete;
    DialogWatch& operator=(const DialogWatch&) = delete;
    ~DialogWatch();

  private:
    void Watch();
    void Look();
    void Close(HWND window, const std::wstring& plugin, bool isDialog);

    std::function<void(const std::wstring&)> tell_;
    std::map<HWND, ULONGLONG> seenSince_;  // in ticks
    std::set<HWND> told_;
    std::mutex mutex_;
    std::condition_variable ends_;
    bool isEnding_ = false;
    std::thread thread_;  // last: it uses the others
};

}  // namespace tessary
