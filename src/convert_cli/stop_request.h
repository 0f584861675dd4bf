// Ctrl+C, a closed console and the end of the session as the wish to stop.
#pragma once

#include <optional>

#include "convert_cli/session_end.h"

namespace tessary {

// For its own life Ctrl+C and Ctrl+Break do not end the program but are noted here. A second one
// ends it after all: a plug-in may hang. When the console is closed or the session ends, the
// program has as long as the system grants it to come to its end, which is the end of this object.
// Only one of these at a time.
class StopRequest {
  public:
    StopRequest();
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;
    ~StopRequest();

    bool IsMade() const;

  private:
    std::optional<SessionEnd> session_;
};

}  // namespace tessary
