#include "helpers/kernel/resize.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "helpers/kernel/column_pass.h"
#include "helpers/kernel/light_rows.h"
#include "helpers/kernel/row_pass.h"
#include "helpers/kernel/source_rows.h"

namespace tessary::kernel {
namespace {

constexpr uint64_t kMostThreads = 8;
// Below this many bytes of both pictures per thread, starting one costs more than it saves.
constexpr uint64_t kBytesPerThread = 1u << 20;
// Keeps the bytes of one row of floats far below what a 32-bit size can count.
constexpr int32_t kMostWidth = 1 << 26;

// The source's columns that are mixed.
struct Columns {
    int32_t first;
    size_t samples;  // of their rows
};

// Those that count, and as many more as a whole SSE2 register needs.
Columns StoredColumns(const dib::DibView& source, const RowFilter& filter) {
    const size_t pixelBytes = SourceRows::PixelBytes(source);
    const size_t whole = SourceRows::RowBytes(source);
    const auto samples = [&](int32_t first) {
        return static_cast<size_t>(filter.EndPixel() - first) * pixelBytes;
    };
    int32_t first = filter.FirstPixel();
    while (first > 0 && samples(first) < SourceRows::kLeastRowBytes)
        --first;
    const size_t readable = whole - static_cast<size_t>(first) * pixelBytes;
    return {first, std::min(std::max(samples(first), SourceRows::kLeastRowBytes), readable)};
}

// Rows of light begin with the first one that counts, and are filled up.
Columns LightColumns(size_t pixelSamples, const RowFilter& filter) {
    const auto pixels = static_cast<size_t>(filter.EndPixel() - filter.FirstPixel());
    return {filter.FirstPixel(), std::max(pixels * pixelSamples, LightRows::kLeastSamples)};
}

// What all threads of one resize share.
struct Job {
    const dib::DibView& source;
    FilterAxis vertical;
    RowFilter horizontal;
    int32_t height;  // of the whole target
    Part part;
    Columns columns;
    size_t pixelBytes;  // of the target
    size_t stride;
    std::span<uint8_t> rows;
    Instructions instructions;
    dib::Backdrop backdrop;
};

// The source's rows from the first column on that is mixed, as one kind of sample.
class StoredSource {
  public:
    using Sample = uint8_t;
    explicit StoredSource(const Job& job)
        : rows_(job.source, job.vertical.MostWeights(), job.backdrop),
          skipped_(static_cast<size_t>(job.columns.first) * SourceRows::PixelBytes(job.source)) {}
    int32_t Window() const { return rows_.Window(); }
    const Sample* Row(int32_t y) { return rows_.Row(y) + skipped_; }

  private:
    SourceRows rows_;
    size_t skipped_;  // samples
};

class LightSource {
  public:
    using Sample = int16_t;
    explicit LightSource(const Job& job)
        : rows_(job.source, job.vertical.MostWeights(), job.columns.first,
                job.horizontal.EndPixel() - job.columns.first) {}
    int32_t Window() const { return rows_.Window(); }
    const Sample* Row(int32_t y) { return rows_.Row(y); }

  private:
    LightRows rows_;
};

// Makes a run of neighbouring target rows. Everything it needs is allocated when it is made, so
// that nothing can fail in a thread.
template <typename Source>
class Band {
  public:
    // Target rows first <= y < end, counted from the top of the part.
    Band(const Job& job, int32_t first, int32_t end)
        : job_(job),
          first_(first),
          end_(end),
          source_(job),
          mixed_(job.columns.samples + RowFilter::kPadding) {
        const auto most = static_cast<size_t>(job.vertical.MostWeights());
        weights_.reserve(most);
        fixed_.Reserve(most);
        rows_.reserve(most);
    }

    void Run() {
        for (int32_t y = first_; y < end_; ++y) {
            MixSourceRows(job_.part.top + y);
            const auto stored = static_cast<size_t>(job_.part.height - 1 - y);
            const auto row = job_.rows.subspan(stored * job_.stride, job_.stride);
            job_.horizontal.Apply(mixed_, job_.columns.first, row);
            const auto used = static_cast<size_t>(job_.part.width) * job_.pixelBytes;
            std::ranges::fill(row.subspan(used), uint8_t{0});
        }
    }

  private:
    using Sample = typename Source::Sample;
    static constexpr bool kIsLight = std::is_same_v<Source, LightSource>;

    // Mixes the source rows of target row y into mixed_, as many at a time as can be held.
    void MixSourceRows(int32_t y) {
        const int32_t top = job_.vertical.WeightsOf(y, weights_);
        if constexpr (!kIsLight) fixed_.Assign(weights_);
        const auto window = static_cast<size_t>(source_.Window());
        const auto out = std::span(mixed_).first(mixed_.size() - RowFilter::kPadding);
        for (size_t done = 0; done < weights_.size(); done += window) {
            const size_t count = std::min(window, weights_.size() - done);
            rows_.clear();
            for (size_t i = done; i < done + count; ++i)
                rows_.push_back(source_.Row(top + static_cast<int32_t>(i)));
            if constexpr (kIsLight) {
                // Fewer rows can have finer weights.
                fixed_.Assign(std::span(weights_).subspan(done, count), kFullLight);
            }
            MixRows<Sample>(rows_, fixed_.Values().subspan(kIsLight ? 0 : done, count),
                            fixed_.Unit(), done > 0, out, job_.instructions);
        }
    }

    const Job& job_;
    int32_t first_;
    int32_t end_;
    Source source_;
    std::vector<double> weights_;
    FixedWeights fixed_;
    std::vector<const Sample*> rows_;
    std::vector<float> mixed_;  // the columns of one row, and the padding behind it
};

// Of the rows and columns that are mixed, about.
uint64_t SourceBytes(const Job& job) {
    const uint64_t rows = uint64_t{static_cast<uint32_t>(job.source.Height())} *
                          static_cast<uint32_t>(job.part.height) /
                          static_cast<uint32_t>(job.height);
    return rows * job.columns.samples;
}

int32_t BandCount(const Job& job) {
    const uint64_t bytes = SourceBytes(job) + job.rows.size();
    const uint64_t cores =
        std::clamp<uint64_t>(std::thread::hardware_concurrency(), 1, kMostThreads);
    const uint64_t bands = std::clamp<uint64_t>(bytes / kBytesPerThread, 1, cores);
    return static_cast<int32_t>(std::min<uint64_t>(bands, static_cast<uint64_t>(job.part.height)));
}

template <typename Source>
void Run(const Job& job) {
    const int32_t count = BandCount(job);
    std::vector<Band<Source>> bands;
    bands.reserve(static_cast<size_t>(count));
    const auto boundary = [&](int32_t band) {
        return static_cast<int32_t>(int64_t{job.part.height} * band / count);
    };
    for (int32_t band = 0; band < count; ++band)
        bands.emplace_back(job, boundary(band), boundary(band + 1));

    std::vector<std::jthread> threads;
    threads.reserve(bands.size());
    size_t started = 1;
    try {
        for (; started < bands.size(); ++started)
            threads.emplace_back([&band = bands[started]] { band.Run(); });
    } catch (const std::system_error&) {
        // No further thread to be had: the bands left over run here.
    }
    bands.front().Run();
    for (size_t band = started; band < bands.size(); ++band)
        bands[band].Run();
}

RowOutput OutputOf(Light light, bool keepsAlpha) {
    if (light == Light::kStored) return RowOutput::kStored;
    return keepsAlpha ? RowOutput::kLightAlpha : RowOutput::kLight;
}

}  // namespace

uint16_t ResizedBits(const dib::DibView& source, Light light) {
    return light == Light::kLinear && dib::RowReader(source).HasAlpha() ? 32 : 24;
}

void Resize(const dib::DibView& source, int32_t width, int32_t height, const Part& part,
            ResizeFilter filter, std::span<uint8_t> rows, Instructions instructions,
            dib::Backdrop backdrop, Light light) {
    if (source.Width() > kMostWidth) throw std::length_error("picture too wide");
    const bool isLight = light == Light::kLinear;
    const size_t pixelBytes = ResizedBits(source, light) / 8u;
    const size_t pixelSamples = isLight ? pixelBytes : SourceRows::PixelBytes(source);
    const FilterAxis across(source.Width(), width, filter);
    RowFilter horizontal(across, part.left, part.width, pixelSamples, instructions,
                         OutputOf(light, pixelBytes == 4));
    const Columns columns =
        isLight ? LightColumns(pixelSamples, horizontal) : StoredColumns(source, horizontal);
    const Job job{source,
                  FilterAxis(source.Height(), height, filter),
                  std::move(horizontal),
                  height,
                  part,
                  columns,
                  pixelBytes,
                  static_cast<size_t>(dib::RowStride(static_cast<uint64_t>(part.width),
                                                     static_cast<uint32_t>(pixelBytes * 8))),
                  rows,
                  instructions,
                  backdrop};
    assert(rows.size() == job.stride * static_cast<size_t>(part.height));
    isLight ? Run<LightSource>(job) : Run<StoredSource>(job);
}

}  // namespace tessary::kernel
