// What the user has opened lately, in the menu of the program's button on the taskbar.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/base/worker_thread.h"

namespace tessary {

// Where the system has no such list nothing happens.
class JumpList {
  public:
    JumpList() = default;
    JumpList(const JumpList&) = delete;
    JumpList& operator=(const JumpList&) = delete;
    // Waits a moment for what is still to be shown.
    ~JumpList();

    // Shows what is remembered as opened (RecentPaths), or nothing at all: on a thread. What the
    // user has taken out of the list is forgotten.
    void ShowRecent();

  private:
    std::optional<Worker> worker_;
};

}  // namespace tessary
