#include "tests/helpers/kernel/reference_resize.h"

#include <algorithm>
#include <cmath>
#include <numbers>

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

// The weights of the source positions from `first` on; not normalised.
struct Mix {
    int32_t first;
    std::vector<double> weights;
};

std::vector<Mix> MixesOf(int32_t sourceLength, int32_t targetLength) {
    const double ratio = static_cast<double>(sourceLength) / targetLength;
    const double stretch = std::max(ratio, 1.0);
    std::vector<Mix> mixes;
    for (int32_t target = 0; target < targetLength; ++target) {
        const double centre = (target + 0.5) * ratio - 0.5;
        Mix mix{std::max(0, static_cast<int32_t>(centre - 3 * stretch)), {}};
        for (int32_t i = mix.first; i < sourceLength && i <= centre + 3 * stretch; ++i) {
            const double x = (i - centre) / stretch;
            mix.weights.push_back(ratio > 1 ? Lanczos3(x) : CatmullRom(x));
        }
        mixes.push_back(std::move(mix));
    }
    return mixes;
}

// Resizes one line of values that stand `step` apart.
void ResizeLine(const double* in, const std::vector<Mix>& mixes, size_t step, double* out) {
    for (const Mix& mix : mixes) {
        double sum = 0;
        double total = 0;
        const double* value = in + static_cast<size_t>(mix.first) * step;
        for (const double weight : mix.weights) {
            sum += weight * *value;
            total += weight;
            value += step;
        }
        *out = sum / total;
        out += step;
    }
}

}  // namespace

std::vector<double> ReferenceResize(const dib::DibView& source, int32_t width, int32_t height) {
    const std::vector<Mix> across = MixesOf(source.Width(), width);
    const std::vector<Mix> down = MixesOf(source.Height(), height);
    const size_t targetRow = static_cast<size_t>(width) * 3;
    const dib::RowReader reader(source);
    std::vector<uint8_t> bytes(static_cast<size_t>(source.Width()) * 3);
    std::vector<double> narrowed(targetRow * static_cast<size_t>(source.Height()));
    for (int32_t y = 0; y < source.Height(); ++y) {
        reader.Row(source.Row(y), bytes);
        const std::vector<double> row(bytes.begin(), bytes.end());
        double* out = &narrowed[static_cast<size_t>(y) * targetRow];
        for (size_t channel = 0; channel < 3; ++channel)
            ResizeLine(&row[channel], across, 3, out + channel);
    }
    std::vector<double> result(targetRow * static_cast<size_t>(height));
    for (size_t column = 0; column < targetRow; ++column)
        ResizeLine(&narrowed[column], down, targetRow, &result[column]);
    return result;
}

double WorstDeviation(const dib::DibView& source, int32_t width, int32_t height,
                      std::span<const uint8_t> rows) {
    const std::vector<double> reference = ReferenceResize(source, width, height);
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
