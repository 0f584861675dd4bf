#include "tests/helpers/kernel/reference_resize.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "helpers/dib/unpack_row.h"

namespace tessary::kernel {
namespace {

double Sinc(double x) {
    return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double Lanczos3(double x) {
    return std::fabs(x) < 3 ? Sinc(x) * Sinc(x / 3) : 0;
}

double CatmullRom(double x) {
    const double a = std::fabs(x);
    if (a < 1) return 1.5 * a * a * a - 2.5 * a * a + 1;
    return a < 2 ? -0.5 * a * a * a + 2.5 * a * a - 4 * a + 2 : 0;
}

// Resizes rows of `length` pixels of three values each, and makes columns of them.
template <typename Value>
std::vector<double> ResizedAndTurned(const std::vector<Value>& in, size_t length, int32_t target) {
    const size_t rows = in.size() / 3 / length;
    const double ratio = static_cast<double>(length) / target;
    const double stretch = std::max(ratio, 1.0);
    std::vector<double> out;
    for (int32_t at = 0; at < target; ++at) {
        const double centre = (at + 0.5) * ratio - 0.5;
        const auto first = static_cast<size_t>(std::max(0.0, centre - 3 * stretch));
        std::vector<double> weights;
        for (size_t i = first; i < length && static_cast<double>(i) <= centre + 3 * stretch; ++i) {
            const double x = (static_cast<double>(i) - centre) / stretch;
            weights.push_back(ratio > 1 ? Lanczos3(x) : CatmullRom(x));
        }
        const double total = std::accumulate(weights.begin(), weights.end(), 0.0);
        for (size_t value = 0; value < rows * 3; ++value) {
            double sum = 0;
            for (size_t i = 0; i < weights.size(); ++i)
                sum += weights[i] * in[(value / 3 * length + first + i) * 3 + value % 3];
            out.push_back(sum / total);
        }
    }
    return out;
}

}  // namespace

std::vector<double> ReferenceResize(const dib::DibView& source, int32_t width, int32_t height,
                                    Light light) {
    const dib::RowReader reader(source);
    const auto length = static_cast<size_t>(source.Width());
    const auto rows = static_cast<size_t>(source.Height());
    std::vector<uint8_t> pixels(length * 3 * rows);
    for (size_t y = 0; y < rows; ++y) {
        reader.Row(source.Row(static_cast<int32_t>(y)),
                   std::span(pixels).subspan(y * length * 3, length * 3));
    }
    if (light == Light::kStored)
        return ResizedAndTurned(ResizedAndTurned(pixels, length, width), rows, height);
    std::vector<double> samples(pixels.begin(), pixels.end());
    for (double& sample : samples) {
        const double level = sample / 255;
        sample = level <= 0.04045 ? level / 12.92 : std::pow((level + 0.055) / 1.055, 2.4);
    }
    samples = ResizedAndTurned(ResizedAndTurned(samples, length, width), rows, height);
    for (double& sample : samples) {
        const double part = std::clamp(sample, 0.0, 1.0);
        sample = 255 * (part <= 0.0031308 ? part * 12.92 : 1.055 * std::pow(part, 1 / 2.4) - 0.055);
    }
    return samples;
}

double WorstDeviation(const dib::DibView& source, int32_t width, int32_t height,
                      std::span<const uint8_t> rows, Light light) {
    const std::vector<double> reference = ReferenceResize(source, width, height, light);
    const size_t used = static_cast<size_t>(width) * 3;
    const size_t stride = rows.size() / static_cast<size_t>(height);
    double worst = 0;
    for (size_t i = 0; i < rows.size(); ++i) {
        const size_t y = static_cast<size_t>(height) - 1 - i / stride;
        const double wanted = i % stride < used ? reference[y * used + i % stride] : 0;
        worst = std::max(worst, std::fabs(rows[i] - std::clamp(wanted, 0.0, 255.0)));
    }
    return worst;
}

}  // namespace tessary::kernel
