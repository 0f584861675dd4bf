#include <cstdlib>
#include <vector>

#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/dcpng/png_writer.h"

using namespace tessary;

namespace {

// Pictures beyond this many pixels only cost time.
constexpr int64_t kMostPixels = 1 << 15;

class NoFile final : public files::ByteSink {
  public:
    bool Write(std::span<const uint8_t>) noexcept override { return true; }
};

}  // namespace

// The input is a byte that chooses options, the size of the info block in two bytes, the info
// block, and the bits block.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) return 0;
    const std::span input(data + 3, size - 3);
    const size_t infoSize = std::min<size_t>(data[1] | data[2] << 8, input.size());
    // Blocks of their own, so that a read beyond either is seen.
    const std::vector<uint8_t> info(input.begin(), input.begin() + static_cast<long>(infoSize));
    const std::vector<uint8_t> bits(input.begin() + static_cast<long>(infoSize), input.end());
    const auto picture = dib::DibView::Of(info, bits);
    if (!picture || int64_t{picture->Width()} * picture->Height() > kMostPixels) return 0;

    const auto low = static_cast<int16_t>(data[0] % 2);
    const auto high = static_cast<int16_t>(data[0] / 2 % 2);
    const auto quality = static_cast<int16_t>(data[0] / 4);
    NoFile sink;
    const saving::SaveResult results[] = {
        convertdib::WriteBitmap(*picture, {low, high}, sink),
        dcpng::WritePng(*picture, {static_cast<int16_t>(quality % 10), low}, sink, {}),
        dcjpeg::WriteJpeg(*picture, {quality, low, high}, sink, {})};
    for (const saving::SaveResult result : results) {
        if (result != saving::SaveResult::kSaved) std::abort();
    }
    return 0;
}
