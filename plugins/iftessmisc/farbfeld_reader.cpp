// farbfeld: 16 bits of red, green, blue and alpha. Format: the manual page farbfeld(5).
#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr std::string_view kSignature = "farbfeld";
constexpr size_t kHeaderSize = 16;
constexpr size_t kPixelBytes = 8;

class FarbfeldReader final : public PictureReader {
  public:
    FarbfeldReader(dib::ByteSource& source, uint32_t width, uint32_t height)
        : input_(source, kHeaderSize) {
        outline_.width = width;
        outline_.height = height;
        outline_.pixels = Pixels::kBgra16;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        const size_t got = input_.Read({row, outline_.width * kPixelBytes}) / kPixelBytes;
        for (size_t x = 0; x < got; ++x, row += kPixelBytes)
            std::swap_ranges(row, row + 2, row + 4);
        return static_cast<uint32_t>(got);
    }

  private:
    ByteInput input_;
};

bool IsFarbfeld(std::span<const uint8_t> header) {
    return header.size() >= kHeaderSize &&
           std::memcmp(header.data(), kSignature.data(), kSignature.size()) == 0;
}

Result OpenFarbfeld(dib::ByteSource& source, codec::Progress&,
                    std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, kHeaderSize> header{};
    if (source.ReadAt(0, header).value_or(0) != header.size()) return Result::kBrokenData;
    const uint32_t width = Big32(&header[8]), height = Big32(&header[12]);
    if (width == 0 || height == 0) return Result::kBrokenData;
    reader = std::make_unique<FarbfeldReader>(source, width, height);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kFarbfeld{L"farbfeld", IsFarbfeld, OpenFarbfeld};

}  // namespace tessary::misc
