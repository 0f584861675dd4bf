// Keys that run commands.
#pragma once

#include <windows.h>

#include <functional>

#include "app/base/handles.h"
#include "ui/form/message_loop.h"

namespace tessary {

// Keeps an accelerator table of the program's resources at work for its own life.
class Accelerators {
  public:
    // Key messages for which `applies` answers true become commands of the window that `target`
    // answers (null: none).
    Accelerators(int resource, std::function<HWND()> target,
                 std::function<bool(const MSG& key)> applies);

  private:
    HACCEL table_;
    std::function<HWND()> target_;
    std::function<bool(const MSG&)> applies_;
    MessageFilter filter_;
};

}  // namespace tessary
