#include "helpers/kernel/light_rows.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace tessary::kernel {
namespace {

// As fine as the weights of so many rows are, those of more would be coarser; and as much memory as
// a ring of them may take.
constexpr int32_t kMostRows = 64;
constexpr int32_t kLeastRows = 16;
constexpr size_t kMostRingBytes = 16u << 20;

int32_t RowsToHold(int32_t window, size_t rowSamples) {
    const size_t affordable = kMostRingBytes / (rowSamples * sizeof(int16_t));
    const auto most = static_cast<int32_t>(std::clamp<size_t>(affordable, kLeastRows, kMostRows));
    return std::min(window, most);
}

// Most of the time goes into this: four bytes are read at once, and two words written.
void LightOfBytes(std::span<const uint8_t> bytes, const LightLevels& levels, int16_t* out) {
    const auto light = [&](uint32_t byte) {
        return static_cast<uint32_t>(levels.LightOf(static_cast<uint8_t>(byte)));
    };
    const size_t whole = bytes.size() / 4 * 4;
    for (size_t i = 0; i < whole; i += 4) {
        uint32_t four = 0;
        std::memcpy(&four, &bytes[i], sizeof(four));
        const uint32_t pairs[2] = {light(four) | light(four >> 8) << 16,
                                   light(four >> 16) | light(four >> 24) << 16};
        std::memcpy(out + i, pairs, sizeof(pairs));
    }
    for (size_t i = whole; i < bytes.size(); ++i)
        out[i] = levels.LightOf(bytes[i]);
}

}  // namespace

LightRows::LightRows(const dib::DibView& view, int32_t window, int32_t left, int32_t columns)
    : view_(view),
      reader_(view),
      levels_(LightLevels::OfSrgb()),
      left_(static_cast<size_t>(left)),
      columns_(static_cast<size_t>(columns)),
      rowSamples_(std::max(columns_ * PixelSamples(reader_), kLeastSamples)),
      window_(RowsToHold(window, rowSamples_)),
      ring_(rowSamples_ * static_cast<size_t>(window_)),
      held_(static_cast<size_t>(window_), -1) {
    if (view.Format() != dib::PixelFormat::kBgr24)
        unpacked_.resize(static_cast<size_t>(view.Width()) * PixelSamples(reader_));
}

const int16_t* LightRows::Row(int32_t y) {
    const auto slot = static_cast<size_t>(y % window_);
    int16_t* const row = &ring_[slot * rowSamples_];
    if (held_[slot] == y) return row;
    held_[slot] = y;
    const size_t begin = left_ * PixelSamples(reader_);
    if (unpacked_.empty()) {
        Fill(view_.Row(y).data() + begin, row);
    } else {
        reader_.HasAlpha() ? reader_.RowBgra(view_.Row(y), unpacked_)
                           : reader_.Row(view_.Row(y), unpacked_);
        Fill(unpacked_.data() + begin, row);
    }
    return row;
}

void LightRows::Fill(const uint8_t* pixels, int16_t* row) const {
    if (!reader_.HasAlpha()) {
        LightOfBytes({pixels, columns_ * 3}, levels_, row);
        return;
    }
    const auto part = [](int light, int alpha) {
        return static_cast<int16_t>((light * alpha + 127) / 255);
    };
    for (size_t x = 0; x < columns_; ++x, pixels += 4, row += 4) {
        for (size_t i = 0; i < 3; ++i)
            row[i] = part(levels_.LightOf(pixels[i]), pixels[3]);
        row[3] = part(kFullLight, pixels[3]);
    }
}

}  // namespace tessary::kernel
