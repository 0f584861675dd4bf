#include "helpers/kernel/resize_filter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessary::kernel {
namespace {

constexpr double kLanczosRadius = 3;
constexpr double kCatmullRomRadius = 2;
// Filter values below this are zeros that rounding hides: the zero crossings of the sinc.
constexpr double kNothing = 1e-9;

// sinc(x) sinc(x/3) for |x| < 3, with sin(3a) written out so that one sine serves both.
double Lanczos3(double x) {
    x = std::fabs(x);
    if (x >= kLanczosRadius) return 0;
    if (x < 1e-6) return 1;
    const double angle = x * (std::numbers::pi / kLanczosRadius);
    const double sine = std::sin(angle);
    const double sineOfTriple = sine * (3 - 4 * sine * sine);
    return sineOfTriple * sine / (kLanczosRadius * angle * angle);
}

double CatmullRom(double x) {
    x = std::fabs(x);
    if (x >= kCatmullRomRadius) return 0;
    return x < 1 ? (1.5 * x - 2.5) * x * x + 1 : ((-0.5 * x + 2.5) * x - 4) * x + 2;
}

}  // namespace

FilterAxis::FilterAxis(int32_t sourceLength, int32_t targetLength, ResizeFilter filter)
    : sourceLength_(sourceLength), step_(static_cast<double>(sourceLength) / targetLength) {
    if (filter == ResizeFilter::kAutomatic) {
        filter = step_ > 1 ? ResizeFilter::kLanczos3 : ResizeFilter::kCatmullRom;
    }
    const bool lanczos = filter == ResizeFilter::kLanczos3;
    const double stretch = std::max(step_, 1.0);
    kernel_ = lanczos ? Lanczos3 : CatmullRom;
    invStretch_ = 1 / stretch;
    reach_ = stretch * (lanczos ? kLanczosRadius : kCatmullRomRadius);
}

int32_t FilterAxis::MostWeights() const {
    return static_cast<int32_t>(std::min<double>(2 * reach_ + 2, sourceLength_));
}

int32_t FilterAxis::WeightsOf(int32_t target, std::vector<double>& weights) const {
    const double centre = (target + 0.5) * step_ - 0.5;
    const double lowest = std::max(std::ceil(centre - reach_), 0.0);
    const double highest = std::min(std::floor(centre + reach_), sourceLength_ - 1.0);
    auto first = static_cast<int32_t>(lowest);
    auto last = static_cast<int32_t>(highest);
    const auto valueAt = [&](int32_t position) {
        return kernel_((position - centre) * invStretch_);
    };
    while (first < last && std::fabs(valueAt(first)) < kNothing)
        ++first;
    while (last > first && std::fabs(valueAt(last)) < kNothing)
        --last;

    weights.clear();
    double sum = 0;
    for (int32_t position = first; position <= last; ++position) {
        weights.push_back(valueAt(position));
        sum += weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return first;
}

}  // namespace tessary::kernel
