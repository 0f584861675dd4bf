// Keys that run commands.
#pragma once

#include <windows.h>

#include <functional>
#include <vector>

#include "app/base/handles.h"
#include "ui/form/message_loop.h"

namespace tessary {

// The keys of an accelerator table of the program's resources.
std::vector<ACCEL> KeysOfResource(int resource);

// Keeps an accelerator table at work for its own life.
class Accelerators {
  public:
    // Key messages for which `applies` answers true become commands of the window that `target`
    // answers (null: none). The table is one of the program's resources, or asked for at each key.
    Accelerators(int resource, std::function<HWND()> target,
                 std::function<bool(const MSG& key)> applies);
    Accelerators(std::function<HACCEL()> table, std::function<HWND()> target,
                 std::function<bool(const MSG& key)> applies);

  private:
    std::function<HACCEL()> table_;
    std::function<HWND()> target_;
    std::function<bool(const MSG&)> applies_;
    MessageFilter filter_;
};

}  // namespace tessary
