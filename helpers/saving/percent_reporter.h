// Progress at a bearable rate.
#pragma once

#include <cstdint>

#include "helpers/dib/byte_stream.h"

namespace tessary::saving {

// Passes on how much is done, in percent, and each percentage at most once.
class PercentReporter {
  public:
    // `progress` may be empty; it must outlive the reporter.
    explicit PercentReporter(const dib::Progress& progress) : progress_(progress) {}

    // `done` of `total`, which is above 0. False when the receiver asks to stop.
    bool Report(uint64_t done, uint64_t total) {
        const int percent = static_cast<int>(done * 100 / total);
        if (!progress_ || percent <= percent_) return true;
        percent_ = percent;
        return progress_(percent);
    }

  private:
    const dib::Progress& progress_;
    int percent_ = -1;  // last one reported
};

}  // namespace tessary::saving
