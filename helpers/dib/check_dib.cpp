#include "helpers/dib/check_dib.h"

#include <algorithm>
#include <cstring>

#include "helpers/dib/dib_view.h"
#include "helpers/dib/pixel_decoder.h"

namespace tessary::dib {
namespace {

// Blocks of unpadded rows are taken for such only up to this many bytes above their exact size:
// what allocators round up to.
constexpr uint64_t kTightSlack = 3;

std::span<const uint8_t> From(std::span<const uint8_t> block, size_t offset) {
    return block.subspan(std::min(offset, block.size()));
}

}  // namespace

CheckedDib CheckDib(std::span<const uint8_t> info, std::span<const uint8_t> bits) {
    CheckedDib checked;
    if (!DibView::Of(info, bits)) {
        checked.bits_ = bits;
        checked.Judge(info);
    }
    return checked;
}

void CheckedDib::Judge(std::span<const uint8_t> info) {
    error_ = ParseHeader(info, source_);
    if (error_ == DibError::kNone && source_.headerSize > info.size()) {
        error_ = DibError::kTruncatedHeader;
    }
    if (error_ == DibError::kNone) error_ = JudgeBits();
    if (error_ != DibError::kNone) return;
    newInfo_ = MakePlainInfo(source_, From(info, source_.tableOffset));
    if (KeepsBits() && source_.topDown) {
        const int32_t height = -source_.height;
        std::memcpy(newInfo_.bytes.data() + offsetof(BitmapInfoHeader, height), &height,
                    sizeof(height));
    }
}

// Finds how the rows lie in the bits block, and whether they have to be written anew.
DibError CheckedDib::JudgeBits() {
    const size_t plainSize = PlainBitsSize(source_);
    if (plainSize == 0) return DibError::kTooLarge;
    if (source_.encoding != Encoding::kRaw) {
        if (!IsBacked(source_, bits_.size())) return DibError::kTooLarge;
        newBitsSize_ = plainSize;
        return DibError::kNone;
    }
    // No source row is more than twice as long as a plain one, so these products cannot wrap
    // either.
    const auto width = static_cast<uint64_t>(source_.width);
    const auto height = static_cast<uint64_t>(source_.height);
    const uint64_t padded = RowStride(width, source_.bitCount);
    const uint64_t tight = RowBytes(width, source_.bitCount);
    if (bits_.size() >= padded * (height - 1) + tight) {
        sourceStride_ = padded;
        if (PlainFormOf(source_).sameBits && bits_.size() >= padded * height)
            return DibError::kNone;
    } else if (bits_.size() >= tight * height && bits_.size() <= tight * height + kTightSlack) {
        sourceStride_ = tight;
    } else {
        return DibError::kBitsTooShort;
    }
    newBitsSize_ = plainSize;
    return DibError::kNone;
}

void CheckedDib::WriteBits(std::span<uint8_t> target) const {
    MemorySource memory(bits_);
    const Progress none;
    ByteStream stream(memory, 0, bits_.size(), none);
    bool isWhole = false;  // as the sizes of the blocks have shown
    DecodePixels(source_, sourceStride_, stream, target, isWhole);
}

}  // namespace tessary::dib
