// Plain pictures of any depth, full of noise.
#pragma once

#include <cstring>
#include <random>
#include <vector>

#include "helpers/dib/dib_view.h"

namespace tessary::kernel {

struct NoisePicture {
    std::vector<uint8_t> info;
    std::vector<uint8_t> bits;  // not a byte longer than the picture needs

    // A negative height stores the top row first. Padding and fourth bytes are noise, too.
    NoisePicture(int32_t width, int32_t height, uint16_t bitCount) {
        dib::BitmapInfoHeader header{};
        header.size = dib::kInfoHeaderSize;
        header.width = width;
        header.height = height;
        header.planes = 1;
        header.bitCount = bitCount;
        header.xPelsPerMeter = 2835;
        header.yPelsPerMeter = 3937;
        std::minstd_rand random(static_cast<uint32_t>(width * 31 + height * 7 + bitCount));
        const auto fill = [&](std::vector<uint8_t>& bytes, uint64_t size) {
            bytes.resize(static_cast<size_t>(size));
            for (uint8_t& byte : bytes)
                byte = static_cast<uint8_t>(random() >> 8);
        };
        fill(info, dib::InfoBlockSize(header));
        std::memcpy(info.data(), &header, sizeof(header));
        fill(bits, dib::RowStride(static_cast<uint64_t>(width), bitCount) *
                       static_cast<uint64_t>(height < 0 ? -height : height));
    }

    dib::DibView View() const { return dib::DibView::Of(info, bits).value(); }
};

}  // namespace tessary::kernel
