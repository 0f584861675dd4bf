#include "plugins/iftesswic/gif_first_frame.h"

#include <algorithm>
#include <array>

#include "plugins/common/picture_target.h"
#include "plugins/iftesswic/gif_codes.h"

namespace tessary::wic {
namespace {

constexpr uint8_t kExtension = 0x21;
constexpr uint8_t kImage = 0x2C;
constexpr uint8_t kTrailer = 0x3B;
constexpr uint64_t kScreenOffset = 6;    // behind "GIF89a"
constexpr uint64_t kLongestBlock = 255;  // data bytes behind a length byte
constexpr unsigned kLongestCode = 12;    // bits of an LZW code

}  // namespace

struct GifFirstFrame::Walk {
    dib::ByteSource& file;
    uint64_t position;
    bool atEnd = false;

    // The end of the codes that make sense: behind which byte, how many bits of that byte come
    // later, and how many bytes of its block.
    struct SoundEnd {
        uint64_t end = 0;
        unsigned bitsBehind = 0;
        uint64_t leftInBlock = 0;
    };
    SoundEnd sound = {};

    uint8_t Byte() {
        uint8_t value = 0;
        if (file.ReadAt(position, {&value, 1}).value_or(0) == 0) {
            atEnd = true;
        } else {
            ++position;
        }
        return value;
    }

    uint32_t Number() {
        const uint32_t low = Byte();
        return low | uint32_t{Byte()} << 8;
    }

    void SkipColorTable(uint8_t flags) {
        if ((flags & 0x80) != 0) position += uint64_t{3} << ((flags & 7) + 1);
    }

    // Moves behind the terminator of a series of blocks; false when the file ends before it. What
    // the blocks hold goes into `codes`, unless that is null.
    bool SkipBlocks(GifCodes* codes = nullptr) {
        for (;;) {
            const uint8_t length = Byte();
            if (codes != nullptr) ReadBlock(length, *codes);
            if (atEnd || position + length > file.Size()) return false;
            if (length == 0) return true;
            position += length;
        }
    }

    void ReadBlock(uint8_t length, GifCodes& codes) {
        std::array<uint8_t, kLongestBlock> block;
        const auto got = file.ReadAt(position, std::span(block).first(length));
        for (size_t i = 0; i < got.value_or(0) && !codes.HasEnded(); ++i) {
            codes.Add(block[i]);
            // A code that goes over into more bytes begins in an earlier one.
            if (codes.BitsBehind() > 8) continue;
            sound = {.end = position + i + 1,
                     .bitsBehind = codes.BitsBehind(),
                     .leftInBlock = length - i - 1};
        }
    }
};

GifFirstFrame::GifFirstFrame(dib::ByteSource& file) : file_(file), fileBytes_(file.Size()) {
    FindFrame();
}

void GifFirstFrame::FindFrame() {
    Walk walk{file_, kScreenOffset};
    screen_.width = walk.Number();
    screen_.height = walk.Number();
    const uint8_t flags = walk.Byte();
    walk.position += 2;  // background colour, aspect ratio
    walk.SkipColorTable(flags);
    for (;;) {
        const uint8_t kind = walk.Byte();
        if (walk.atEnd) return;
        if (kind == kImage) return ReadFrame(walk);
        if (kind != kExtension) return;
        walk.Byte();  // which extension
        if (!walk.SkipBlocks()) return;
    }
}

void GifFirstFrame::ReadFrame(Walk& walk) {
    screen_.frameLeft = walk.Number();
    screen_.frameTop = walk.Number();
    screen_.frameWidth = walk.Number();
    screen_.frameHeight = walk.Number();
    screen_.width = std::max(screen_.width, screen_.frameLeft + screen_.frameWidth);
    screen_.height = std::max(screen_.height, screen_.frameTop + screen_.frameHeight);
    walk.SkipColorTable(walk.Byte());
    GifCodes codes(walk.Byte());
    isWhole_ = hasPixels_ = false;
    if (walk.atEnd) return;
    const bool isEnded = walk.SkipBlocks(&codes);
    isWhole_ = codes.Pixels() >= uint64_t{screen_.frameWidth} * screen_.frameHeight;
    hasPixels_ = codes.Pixels() != 0;
    if (isEnded && isWhole_) {
        fileBytes_ = walk.position;
        hasTail_ = true;
    } else if (hasPixels_) {
        Complete(walk);
    }
}

// Zero bits are the code of colour 0 whatever has been read before, so they complete any data that
// ends between two codes.
void GifFirstFrame::Complete(const Walk& walk) {
    const uint64_t pixels = uint64_t{screen_.frameWidth} * screen_.frameHeight;
    if (!codec::IsPlausibleSize(pixels, file_.Size())) return;
    hasTail_ = true;
    fileBytes_ = walk.sound.end;
    lastByteMask_ = static_cast<uint8_t>(0xFF >> walk.sound.bitsBehind);
    missingBytes_ = walk.sound.leftInBlock;
    missingBlocks_ = pixels * kLongestCode / 8 / kLongestBlock + 1;
}

uint64_t GifFirstFrame::TailSize() const {
    if (!hasTail_) return 0;
    const uint64_t terminator = missingBlocks_ != 0 ? 1 : 0;
    return missingBytes_ + missingBlocks_ * (1 + kLongestBlock) + terminator + 1;
}

uint8_t GifFirstFrame::TailByte(uint64_t index) const {
    if (index + 1 == TailSize()) return kTrailer;
    if (index < missingBytes_) return 0;
    const uint64_t inBlocks = index - missingBytes_;
    const bool isLength =
        inBlocks < missingBlocks_ * (1 + kLongestBlock) && inBlocks % (1 + kLongestBlock) == 0;
    return isLength ? kLongestBlock : 0;
}

std::optional<size_t> GifFirstFrame::ReadAt(uint64_t offset, std::span<uint8_t> out) {
    size_t count = 0;
    if (offset < fileBytes_) {
        const uint64_t wanted = std::min<uint64_t>(out.size(), fileBytes_ - offset);
        const auto got = file_.ReadAt(offset, out.first(static_cast<size_t>(wanted)));
        if (!got || *got < wanted) return got;
        count = *got;
        if (offset + count == fileBytes_ && count != 0) out[count - 1] &= lastByteMask_;
    }
    for (; count < out.size() && offset + count < Size(); ++count) {
        out[count] = TailByte(offset + count - fileBytes_);
    }
    return count;
}

}  // namespace tessary::wic
