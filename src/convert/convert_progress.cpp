#include "convert/convert_progress.h"

#include <cmath>

#include "app/base/error.h"
#include "plugin/call_watch.h"

namespace tessary {
namespace {

// The writers know the callback's address and nothing else, so it has to find its monitor by
// itself.
thread_local ConvertMonitor* watching = nullptr;

// In single precision at each step; `volatile` because the floating-point unit calculates with
// more.
float PercentOf(int numerator, int denominator) {
    const volatile float quotient = static_cast<float>(numerator) / static_cast<float>(denominator);
    const volatile float percent = quotient * 100.0F;
    return percent;
}

}  // namespace

ProgressWatch::ProgressWatch(ConvertMonitor& monitor) {
    watching = &monitor;
}

ProgressWatch::~ProgressWatch() {
    watching = nullptr;
}

bool ProgressWatch::IsThere() {
    return watching != nullptr;
}

int __stdcall ConvertProgressCallback(int numerator, int denominator, LONG_PTR) {
    if (denominator == 0 || watching == nullptr) return 0;
    const float percent = PercentOf(numerator, denominator);
    if (std::fabs(percent) >= 2147483648.0F) return 0;
    Trapped([&] {
        watching->SetProgressBar(-1, -1, static_cast<int32_t>(std::nearbyint(percent)), 100);
    });
    return 0;
}

bool TellProgress(int done, int total) {
    ConvertProgressCallback(done, total, 0);
    return IsCallWanted();
}

bool TellNothing(int, int) {
    if (watching != nullptr) {
        Trapped([] { watching->SetProgressBar(-1, -1, 0, 0); });
    }
    return true;
}

}  // namespace tessary
