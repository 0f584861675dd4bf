#include "plugins/common/page_warmer.h"

#include <system_error>

namespace tessary::spi {
namespace {

constexpr size_t kPageSize = 4096;
constexpr size_t kWorthwhileSize = 8 << 20;  // bytes; below that the thread costs what it saves

// Writes to the page without changing it: the decoder may be writing there at this moment.
void Touch(uint8_t* byte) {
    std::atomic_ref(*byte).fetch_or(0, std::memory_order_relaxed);
}

}  // namespace

void PageWarmer::Start(uint8_t* block, size_t size) {
    Stop();
    if (size < kWorthwhileSize) return;
    stopped_ = false;
    try {
        thread_ = std::thread([this, block, size] {
            for (size_t end = size; end > kPageSize && !stopped_; end -= kPageSize) {
                Touch(block + end - 1);
            }
        });
    } catch (const std::system_error&) {  // the decoder takes the faults itself, as it always could
    }
}

void PageWarmer::Stop() {
    stopped_ = true;
    if (thread_.joinable()) thread_.join();
}

}  // namespace tessary::spi
