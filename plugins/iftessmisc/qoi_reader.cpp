// QOI. Format: The Quite OK Image Format Specification, version 1.0.
#include <array>
#include <cstring>
#include <string_view>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr std::string_view kSignature = "qoif";
constexpr size_t kHeaderSize = 14;

struct Pixel {
    uint8_t red = 0, green = 0, blue = 0, alpha = 0;

    size_t Place() const { return (red * 3u + green * 5u + blue * 7u + alpha * 11u) % 64; }
};

class QoiReader final : public PictureReader {
  public:
    QoiReader(dib::ByteSource& source, uint32_t width, uint32_t height, bool hasAlpha)
        : input_(source, kHeaderSize), hasAlpha_(hasAlpha) {
        outline_.width = width;
        outline_.height = height;
        outline_.pixels = hasAlpha ? Pixels::kBgra : Pixels::kBgr;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        for (uint32_t x = 0; x < outline_.width; ++x) {
            if (left_ != 0) {
                --left_;
            } else if (!Next()) {
                return x;
            }
            *row++ = pixel_.blue;
            *row++ = pixel_.green;
            *row++ = pixel_.red;
            if (hasAlpha_) *row++ = pixel_.alpha;
        }
        return outline_.width;
    }

  private:
    bool Next() {
        const int head = input_.Byte();
        if (head < 0) return false;
        if (head >= 0xFE) {
            std::array<uint8_t, 4> stored{0, 0, 0, pixel_.alpha};
            const size_t count = head == 0xFE ? 3 : 4;
            if (input_.Read(std::span(stored).first(count)) != count) return false;
            pixel_ = {stored[0], stored[1], stored[2], stored[3]};
        } else if (head < 0x40) {
            pixel_ = seen_[static_cast<size_t>(head)];
        } else if (head < 0x80) {
            Change((head >> 4 & 3) - 2, (head >> 2 & 3) - 2, (head & 3) - 2);
        } else if (head < 0xC0) {
            const int second = input_.Byte();
            if (second < 0) return false;
            const int green = (head & 0x3F) - 32;
            Change(green + (second >> 4) - 8, green, green + (second & 0xF) - 8);
        } else {
            left_ = head & 0x3F;
        }
        seen_[pixel_.Place()] = pixel_;
        return true;
    }
    void Change(int red, int green, int blue) {
        pixel_.red = static_cast<uint8_t>(pixel_.red + red);
        pixel_.green = static_cast<uint8_t>(pixel_.green + green);
        pixel_.blue = static_cast<uint8_t>(pixel_.blue + blue);
    }

    ByteInput input_;
    bool hasAlpha_;
    Pixel pixel_{0, 0, 0, 0xFF};
    std::array<Pixel, 64> seen_{};
    int left_ = 0;  // of a run, behind its first pixel
};

bool IsQoi(std::span<const uint8_t> header) {
    return header.size() >= kHeaderSize &&
           std::memcmp(header.data(), kSignature.data(), kSignature.size()) == 0 &&
           (header[12] == 3 || header[12] == 4) && header[13] <= 1;
}

Result OpenQoi(dib::ByteSource& source, codec::Progress&, std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, kHeaderSize> header{};
    if (source.ReadAt(0, header).value_or(0) != header.size()) return Result::kBrokenData;
    const uint32_t width = Big32(&header[4]), height = Big32(&header[8]);
    if (width == 0 || height == 0) return Result::kBrokenData;
    // The last byte, the colour space, is for information only.
    reader = std::make_unique<QoiReader>(source, width, height, header[12] == 4);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kQoi{L"QOI", IsQoi, OpenQoi};

}  // namespace tessary::misc
