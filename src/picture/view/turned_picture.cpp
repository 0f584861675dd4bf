#include "picture/view/turned_picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace tessary {
namespace {

// Rows that are turned at a time: their columns stay in the processor's caches meanwhile.
constexpr int32_t kTile = 32;

struct Place {
    int32_t x;
    int32_t y;
};

// Where the pixel at a place of the turned picture comes from; `size` is the picture's.
Place SourceOf(Turn turn, Place at, Place size) {
    switch (turn) {
        case Turn::kRight:
            return {at.y, size.y - 1 - at.x};
        case Turn::kLeft:
            return {size.x - 1 - at.y, at.x};
        case Turn::kHalf:
            return {size.x - 1 - at.x, size.y - 1 - at.y};
        case Turn::kMirror:
            return {size.x - 1 - at.x, at.y};
        case Turn::kFlip:
            return {at.x, size.y - 1 - at.y};
    }
    return at;
}

bool IsQuarter(Turn turn) {
    return turn == Turn::kRight || turn == Turn::kLeft;
}

// Copies pixels of whole bytes.
template <size_t kBytes>
struct WholeBytes {
    static void Copy(const uint8_t* from, int32_t fromX, uint8_t* to, int32_t toX) {
        std::memcpy(to + static_cast<size_t>(toX) * kBytes,
                    from + static_cast<size_t>(fromX) * kBytes, kBytes);
    }
};

// Copies pixels of which several share a byte, the first one in its highest bits. The rows are
// filled with zeros before.
template <int kBits>
struct PartBytes {
    static void Copy(const uint8_t* from, int32_t fromX, uint8_t* to, int32_t toX) {
        constexpr int32_t kPerByte = 8 / kBits;
        constexpr unsigned kMask = (1u << kBits) - 1;
        const auto shift = [](int32_t x) { return 8 - kBits * (x % kPerByte + 1); };
        const unsigned pixel = from[fromX / kPerByte] >> shift(fromX) & kMask;
        to[toX / kPerByte] |= static_cast<uint8_t>(pixel << shift(toX));
    }
};

class Turner {
  public:
    Turner(const dib::DibView& view, Turn turn)
        : view_(view), turn_(turn), size_{view.Width(), view.Height()} {
        if (IsQuarter(turn)) std::swap(turned_.x, turned_.y);
    }

    bool Fill(std::span<uint8_t> rows) {
        rows_ = rows;
        std::ranges::fill(rows, uint8_t{0});
        switch (dib::BitsPerPixel(view_.Format())) {
            case 1:
                return Copy<PartBytes<1>>();
            case 4:
                return Copy<PartBytes<4>>();
            case 8:
                return Copy<WholeBytes<1>>();
            case 16:
                return Copy<WholeBytes<2>>();
            case 24:
                return Copy<WholeBytes<3>>();
            default:
                return Copy<WholeBytes<4>>();
        }
    }

  private:
    uint8_t* TurnedRow(int32_t y) const {
        const size_t stride = rows_.size() / static_cast<size_t>(turned_.y);
        const int32_t stored = view_.IsTopDown() ? y : turned_.y - 1 - y;
        return rows_.data() + static_cast<size_t>(stored) * stride;
    }

    template <typename Pixels>
    bool Copy() const {
        for (int32_t top = 0; top < turned_.y; top += kTile) {
            const int32_t bottom = std::min(top + kTile, turned_.y);
            for (int32_t left = 0; left < turned_.x; left += kTile) {
                const int32_t right = std::min(left + kTile, turned_.x);
                for (int32_t y = top; y < bottom; ++y) {
                    uint8_t* const row = TurnedRow(y);
                    for (int32_t x = left; x < right; ++x) {
                        const Place from = SourceOf(turn_, {x, y}, size_);
                        Pixels::Copy(view_.Row(from.y).data(), from.x, row, x);
                    }
                }
            }
        }
        return true;
    }

    const dib::DibView& view_;
    Turn turn_;
    Place size_;
    Place turned_ = size_;
    std::span<uint8_t> rows_;
};

}  // namespace

Picture TurnedPicture(const Picture& picture, Turn turn) {
    std::vector<uint8_t> info(picture.Info().begin(), picture.Info().end());
    dib::BitmapInfoHeader header = picture.Header();
    if (IsQuarter(turn)) {
        const int32_t width = header.width;
        header.width = std::abs(header.height);
        header.height = header.height < 0 ? -width : width;
        std::swap(header.xPelsPerMeter, header.yPelsPerMeter);
    }
    header.sizeImage = 0;
    std::memcpy(info.data(), &header, sizeof(header));
    Turner turner(picture.View(), turn);
    Picture turned =
        Picture::Make(info, [&](std::span<uint8_t> rows) { return turner.Fill(rows); });
    if (turned) turned.SetProfile(picture.Profile());
    return turned;
}

Picture TurnedPicture(const Picture& picture, uint16_t orientation) {
    if (orientation == exif::kUpright) return picture.Another();
    for (const Turn turn : {Turn::kRight, Turn::kHalf, Turn::kLeft, Turn::kMirror, Turn::kFlip}) {
        if (OrientationOf(turn) == orientation) return TurnedPicture(picture, turn);
    }
    // The two that are left take two steps.
    const bool isRight =
        exif::Composed(exif::kMirrored, OrientationOf(Turn::kRight)) == orientation;
    const Picture mirrored = TurnedPicture(picture, Turn::kMirror);
    return mirrored ? TurnedPicture(mirrored, isRight ? Turn::kRight : Turn::kLeft) : Picture();
}

}  // namespace tessary
