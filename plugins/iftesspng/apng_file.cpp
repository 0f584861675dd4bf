#include "plugins/iftesspng/apng_file.h"

#include <zlib.h>

#include <algorithm>
#include <array>

namespace tessary::png {
namespace {

using codec::Result;
using Bytes = std::span<const uint8_t>;

constexpr uint64_t kSignatureSize = 8;
constexpr size_t kNameSize = 4;
constexpr size_t kSumSize = 4;
constexpr size_t kNumberSize = 4;  // of the sequence, before the data of fdAT
constexpr size_t kControlSize = 26;
constexpr uint32_t kLongestChunk = 0x7FFFFFFF;
constexpr size_t kLongestHeader = 16u << 20;
constexpr size_t kMostFrames = 1'000'000;
constexpr uint32_t kHundredths = 100;            // in place of a denominator of 0
constexpr size_t kSidesAt = kSignatureSize + 8;  // in the header: width, then height

constexpr uint32_t Name(const char (&text)[5]) {
    return uint32_t{static_cast<uint8_t>(text[0])} << 24 |
           uint32_t{static_cast<uint8_t>(text[1])} << 16 |
           uint32_t{static_cast<uint8_t>(text[2])} << 8 | static_cast<uint8_t>(text[3]);
}

uint32_t Number(Bytes bytes, size_t at) {
    return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 |
           uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

void Append(std::vector<uint8_t>& bytes, uint32_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<uint8_t>(number >> shift));
}

uint32_t SumOf(Bytes bytes) {
    return static_cast<uint32_t>(crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
}

// One chunk behind the other.
class ChunkWalk {
  public:
    ChunkWalk(dib::ByteSource& source, uint64_t position) : source_(source), behind_(position) {}

    // False at the end of the file.
    bool Next() {
        position_ = behind_;
        std::array<uint8_t, 8> head{};
        if (source_.ReadAt(position_, head) != head.size()) return false;
        length_ = Number(head, 0);
        name_ = Number(head, kNumberSize);
        behind_ = position_ + head.size() + length_ + kSumSize;
        return length_ <= kLongestChunk;
    }
    uint64_t Position() const { return position_; }
    uint64_t Behind() const { return behind_; }
    uint32_t Name() const { return name_; }
    uint32_t Length() const { return length_; }

    // The name, as many bytes of data as there are, and whether the check sum is theirs, as far as
    // it is there. Nothing where the medium fails.
    bool Read(std::vector<uint8_t>& chunk, bool& isSound) const {
        const uint64_t there = source_.Size() - std::min(source_.Size(), position_ + kNumberSize);
        const uint64_t whole = kNameSize + uint64_t{length_} + kSumSize;
        chunk.resize(static_cast<size_t>(std::min(whole, there)));
        if (source_.ReadAt(position_ + kNumberSize, chunk) != chunk.size()) return false;
        const bool hasSum = chunk.size() == whole;
        const uint32_t sum = hasSum ? Number(chunk, chunk.size() - kSumSize) : 0;
        chunk.resize(std::min<size_t>(chunk.size(), kNameSize + length_));
        isSound = !hasSum || SumOf(chunk) == sum;
        return true;
    }

  private:
    dib::ByteSource& source_;
    uint64_t position_ = 0;
    uint64_t behind_;
    uint32_t name_ = 0;
    uint32_t length_ = 0;
};

// What a chunk of a known size says; nothing for any other.
std::optional<std::vector<uint8_t>> DataOf(const ChunkWalk& chunk, size_t size) {
    std::vector<uint8_t> bytes;
    bool isSound = false;
    if (chunk.Length() != size || !chunk.Read(bytes, isSound) || !isSound) return std::nullopt;
    bytes.erase(bytes.begin(), bytes.begin() + kNameSize);
    return bytes;
}

ApngFrame FrameOf(Bytes control) {
    ApngFrame frame;
    frame.place = {.left = Number(control, 12),
                   .top = Number(control, 16),
                   .width = Number(control, 4),
                   .height = Number(control, 8)};
    const uint32_t numerator = control[20] << 8u | control[21];
    const uint32_t denominator = control[22] << 8u | control[23];
    const uint32_t by = denominator == 0 ? kHundredths : denominator;
    frame.duration = (numerator * 1000 + by / 2) / by;
    frame.disposal = control[24];
    frame.isBlended = control[25] == 1;
    return frame;
}

bool IsInside(const codec::FramePlace& place, const ApngFile& file) {
    return place.width != 0 && place.height != 0 && place.width <= file.width &&
           place.height <= file.height && place.left <= file.width - place.width &&
           place.top <= file.height - place.height;
}

// Reads on from the first frame's head or the picture data. False where frames are not as they
// should be.
class FrameList {
  public:
    FrameList(dib::ByteSource& source, ApngFile& file) : source_(source), file_(file) {}

    bool Read(ChunkWalk& chunk) {
        do {
            const bool isPicture = chunk.Name() == Name("IDAT");
            hasPicture_ = hasPicture_ || isPicture;
            file_.hasEnd = chunk.Name() == Name("IEND");
            if (file_.hasEnd) break;
            if (chunk.Name() == Name("fcTL")) {
                if (file_.frames.size() == kMostFrames) break;
                if (!ReadControl(chunk)) return false;
            } else if (isPicture || chunk.Name() == Name("fdAT")) {
                if (!isPicture && (!hasPicture_ || !IsNext(chunk))) return false;
                if (next_ && next_->data == 0) next_->data = chunk.Position();
            }
        } while (chunk.Next());
        Finish();
        return true;
    }

  private:
    bool IsNext(const ChunkWalk& chunk) {
        std::array<uint8_t, kNumberSize> number{};
        if (chunk.Length() < number.size()) return false;
        if (source_.ReadAt(chunk.Position() + 8, number) != number.size()) return true;  // cut
        return Number(number, 0) == sequence_++;
    }
    bool ReadControl(const ChunkWalk& chunk) {
        if (chunk.Behind() > source_.Size()) return true;  // cut short
        const auto control = DataOf(chunk, kControlSize);
        if (!control || Number(*control, 0) != sequence_++) return false;
        Finish();
        next_ = FrameOf(*control);
        const bool isWhole =
            next_->place.width == file_.width && next_->place.height == file_.height;
        return IsInside(next_->place, file_) && (hasPicture_ || isWhole);
    }
    void Finish() {
        if (next_ && next_->data != 0) file_.frames.push_back(*next_);
        next_.reset();
    }

    dib::ByteSource& source_;
    ApngFile& file_;
    std::optional<ApngFrame> next_;
    uint32_t sequence_ = 0;
    bool hasPicture_ = false;
};

}  // namespace

std::optional<ApngFile> ReadApng(dib::ByteSource& source) {
    ApngFile file;
    file.header.resize(kSignatureSize);
    if (source.ReadAt(0, file.header) != kSignatureSize) return std::nullopt;
    bool isAnimated = false;
    ChunkWalk chunk(source, kSignatureSize);
    while (chunk.Next() && chunk.Name() != Name("IDAT") && chunk.Name() != Name("fcTL")) {
        if (chunk.Name() == Name("acTL")) {
            const auto control = DataOf(chunk, 8);
            if (!control || isAnimated) return std::nullopt;
            isAnimated = true;
            file.promised = Number(*control, 0);
            file.rounds = Number(*control, 4);
            continue;
        }
        if (chunk.Name() == Name("IEND") || chunk.Behind() > source.Size()) return std::nullopt;
        // What turns a picture upright would turn each frame by itself, and may be text.
        if (chunk.Name() == Name("eXIf") || chunk.Name() == Name("tEXt") ||
            chunk.Name() == Name("zTXt")) {
            continue;
        }
        const size_t at = file.header.size();
        const auto size = chunk.Behind() - chunk.Position();
        if (size > kLongestHeader - at) return std::nullopt;
        file.header.resize(at + static_cast<size_t>(size));
        if (source.ReadAt(chunk.Position(), std::span(file.header).subspan(at)) != size) {
            return std::nullopt;
        }
    }
    constexpr size_t kLeast = kSignatureSize + 8 + 13 + kSumSize;  // with IHDR
    if (!isAnimated || file.header.size() < kLeast) return std::nullopt;
    file.width = Number(file.header, kSidesAt);
    file.height = Number(file.header, kSidesAt + 4);
    if (!FrameList(source, file).Read(chunk) || file.frames.size() < 2) return std::nullopt;
    return file;
}

Result ReadFrameFile(dib::ByteSource& source, const ApngFile& file, const ApngFrame& frame,
                     std::vector<uint8_t>& png, bool& isDamaged) {
    constexpr size_t kNameAt = kSignatureSize + 4, kSumAt = kSidesAt + 13;
    png = file.header;
    std::vector<uint8_t> number;
    Append(number, frame.place.width);
    Append(number, frame.place.height);
    std::ranges::copy(number, png.begin() + kSidesAt);
    number.clear();
    Append(number, SumOf(std::span(png).subspan(kNameAt, kSumAt - kNameAt)));
    std::ranges::copy(number, png.begin() + kSumAt);

    ChunkWalk chunk(source, frame.data);
    bool isWhole = false;
    std::vector<uint8_t> bytes;
    while (!isWhole && chunk.Next()) {
        const bool isPicture = chunk.Name() == Name("IDAT");
        isWhole = chunk.Name() == Name("fcTL") || chunk.Name() == Name("IEND");
        if (!isPicture && chunk.Name() != Name("fdAT")) continue;
        bool isSound = false;
        if (!chunk.Read(bytes, isSound)) return Result::kReadError;
        isDamaged = isDamaged || !isSound;
        const size_t from = isPicture ? kNameSize : kNameSize + kNumberSize;
        if (bytes.size() <= from) continue;
        // As a chunk of picture data.
        const size_t at = png.size();
        Append(png, static_cast<uint32_t>(bytes.size() - from));
        Append(png, Name("IDAT"));
        png.insert(png.end(), bytes.begin() + static_cast<ptrdiff_t>(from), bytes.end());
        Append(png, SumOf(std::span(png).subspan(at + 4)));
    }
    for (const uint32_t end : {0u, Name("IEND"), 0xAE426082u})
        Append(png, end);
    return Result::kSuccess;
}

}  // namespace tessary::png
