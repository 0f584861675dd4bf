// Ctrl+C, a closed console and the end of the session as the wish to stop.
#pragma once

#include <functional>
#include <optional>

#include "convert_cli/session_end.h"

namespace tessary {

// For its own life Ctrl+C and Ctrl+Break do not end the program but are noted here. A second one
// ends it after all, with the status of a stop: a drive may hang. When the console is closed or the
// session ends, the program has as long as the system grants it to come to its end, which is the
// end of this object. Only one of these at a time.
class StopRequest {
  public:
    // `endsAtOnce` is called on the system's thread before the second one ends the process.
    explicit StopRequest(std::function<void()> endsAtOnce);
    StopRequest(const StopRequest&) = delete;
    StopRequest& operator=(const StopRequest&) = delete;
    ~StopRequest();

    bool IsMade() const;

  private:
    const std::function<void()> endsAtOnce_;
    std::optional<SessionEnd> session_;
};

}  // namespace tessary
