#include "plugins/common/progress.h"

namespace tessary::codec {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(40);

// Hosts multiply the two figures by 100 in 32 bits, so they get a small fixed total.
constexpr int kTotal = 1000;

}  // namespace

bool Progress::Report(uint64_t done, uint64_t total) {
    if (!listener_) return true;
    const auto now = std::chrono::steady_clock::now();
    if (done < total && now < next_) return true;
    const int scaled =
        total == 0 || done >= total ? kTotal : static_cast<int>(done * kTotal / total);
    const bool goOn = listener_(scaled, kTotal);
    // Counted from the listener's return: one that takes long must not be called without pause.
    next_ = std::chrono::steady_clock::now() + kInterval;
    return goOn;
}

}  // namespace tessary::codec
