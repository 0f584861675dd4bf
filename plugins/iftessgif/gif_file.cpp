#include "plugins/iftessgif/gif_file.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace tessary::gif {
namespace {

constexpr uint8_t kExtension = 0x21;
constexpr uint8_t kImage = 0x2C;
constexpr uint8_t kControl = 0xF9;
constexpr uint8_t kApplication = 0xFF;
constexpr std::string_view kLoopName = "NETSCAPE2.0";
constexpr std::string_view kOtherLoopName = "ANIMEXTS1.0";
constexpr uint8_t kLoopCount = 1;
constexpr uint64_t kScreenOffset = 6;  // behind "GIF89a"

// A position in the file. Behind the end all bytes are 0.
class Walk {
  public:
    explicit Walk(dib::ByteSource& file) : file_(file) {}

    uint64_t Position() const { return position_; }
    bool IsAtEnd() const { return isAtEnd_; }
    bool HasFailed() const { return hasFailed_; }

    uint8_t Byte() {
        if (position_ - start_ >= size_) Fill();
        if (isAtEnd_) return 0;
        return block_[static_cast<size_t>(position_++ - start_)];
    }
    uint16_t Number() {
        const unsigned low = Byte();
        return static_cast<uint16_t>(low | Byte() << 8);
    }
    void Skip(uint64_t bytes) { position_ += bytes; }
    void SkipTable(uint8_t flags) {
        if ((flags & 0x80) != 0) Skip(uint64_t{3} << ((flags & 7) + 1));
    }
    // Moves behind the end of a row of blocks; how many bytes were in them.
    uint64_t SkipBlocks() {
        uint64_t bytes = 0;
        while (const uint8_t length = Byte()) {
            bytes += length;
            Skip(length);
        }
        return bytes;
    }

  private:
    void Fill() {
        start_ = position_;
        const auto got = file_.ReadAt(position_, block_);
        hasFailed_ = hasFailed_ || !got;
        size_ = got.value_or(0);
        isAtEnd_ = size_ == 0;
    }

    dib::ByteSource& file_;
    uint64_t position_ = kScreenOffset;
    uint64_t start_ = 0;  // of the block
    size_t size_ = 0;
    bool isAtEnd_ = false;
    bool hasFailed_ = false;
    std::array<uint8_t, 8192> block_;
};

// What an extension says of the next frame, or of all.
void ReadExtension(Walk& walk, GifFrame& next, GifFile& file) {
    const uint8_t kind = walk.Byte();
    bool isFirst = true;
    bool isLoop = false;
    while (const uint8_t length = walk.Byte()) {
        const uint64_t end = walk.Position() + length;
        if (kind == kControl && isFirst && length >= 4) {
            const uint8_t flags = walk.Byte();
            next.disposal = flags >> 2 & 7;
            next.delay = walk.Number();
            const uint8_t clear = walk.Byte();
            next.clearIndex = (flags & 1) != 0 ? int16_t{clear} : int16_t{-1};
        } else if (kind == kApplication && isFirst && length == kLoopName.size()) {
            std::string name;
            while (walk.Position() < end && !walk.IsAtEnd())
                name += static_cast<char>(walk.Byte());
            isLoop = name == kLoopName || name == kOtherLoopName;
        } else if (isLoop && length >= 3 && walk.Byte() == kLoopCount) {
            // So often it is played again.
            const uint32_t again = walk.Number();
            file.rounds = again == 0 ? 0 : again + 1;
        }
        isFirst = false;
        if (!walk.IsAtEnd()) walk.Skip(end - walk.Position());
    }
}

}  // namespace

GifFile ReadGif(dib::ByteSource& source, size_t most) {
    Walk walk(source);
    GifFile file;
    file.width = walk.Number();
    file.height = walk.Number();
    file.flags = walk.Byte();
    walk.Skip(2);  // background colour, aspect ratio
    walk.SkipTable(file.flags);
    GifFrame next;
    while (file.frames.size() < most) {
        next.position = walk.Position();
        const uint8_t kind = walk.Byte();
        if (kind == kExtension) {
            ReadExtension(walk, next, file);
            continue;
        }
        if (kind != kImage) break;
        next.left = walk.Number();
        next.top = walk.Number();
        next.width = walk.Number();
        next.height = walk.Number();
        next.flags = walk.Byte();
        walk.SkipTable(next.flags);
        walk.Byte();  // bits of the first codes
        if (walk.IsAtEnd()) {
            file.open = next;
            break;
        }
        const bool isFirst = file.frames.empty();
        if (isFirst) {
            file.width = std::max(file.width, uint32_t{next.left} + next.width);
            file.height = std::max(file.height, uint32_t{next.top} + next.height);
        }
        // Whoever wants one frame need not look for its end.
        const bool hasPixels = (isFirst && most == 1) || walk.SkipBlocks() != 0;
        if (hasPixels || isFirst) file.frames.push_back(next);
        if (walk.IsAtEnd()) file.open = next;
        next = {};
    }
    file.hasFailed = walk.HasFailed();
    return file;
}

}  // namespace tessary::gif
