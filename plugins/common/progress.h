// Tells the host how far a decoder has come and what it has met, and the decoder whether to stop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

#include "plugins/common/remark.h"

namespace tessary::codec {

class Progress {
  public:
    // Answers false to stop the decoder. Must not throw.
    using Listener = std::function<bool(int done, int total)>;

    Progress() = default;  // nobody listens
    explicit Progress(Listener listener) : listener_(std::move(listener)) {}

    // To be called as often as the decoder likes, once per row at most: the listener hears the
    // first report, the last one (`done` equal to `total`), and those between at a rate at which a
    // window can be redrawn. False when the decoder is to stop.
    bool Report(uint64_t done, uint64_t total);

    // What the host is to know beside the result: of several things the first, which has caused
    // the others.
    void Tell(Condition condition, std::wstring text) {
        if (remark_.condition == Condition::kNone) remark_ = {condition, std::move(text)};
    }
    const Remark& Told() const { return remark_; }

  private:
    Listener listener_;
    Remark remark_;
    std::chrono::steady_clock::time_point next_{};
};

}  // namespace tessary::codec
