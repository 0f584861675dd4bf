#include "plugins/iftesspng/picture_data.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tessary::png {
namespace {

using codec::Result;

// Layout of the file, by the PNG specification (ISO/IEC 15948): a signature; then chunks, each with
// its data's length, its name, the data, and their CRC-32. The first chunk is IHDR.
constexpr uint64_t kSignatureSize = 8;
constexpr size_t kChunkHeadSize = 8;
constexpr size_t kNameSize = 4;
constexpr size_t kCheckSumSize = 4;
constexpr uint32_t kLongestChunk = 0x7FFFFFFF;
constexpr size_t kHeaderSize = 13;  // of IHDR's data
constexpr int kMostChunks = 1000;   // looked through for picture data

constexpr std::array<uint8_t, kNameSize> kDataName{'I', 'D', 'A', 'T'};

struct ChunkHead {
    std::array<uint8_t, kChunkHeadSize> bytes;

    uint32_t Length() const { return Number(0); }
    bool IsData() const { return std::equal(kDataName.begin(), kDataName.end(), &bytes[4]); }
    uint32_t Number(size_t at) const {
        return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 |
               uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
    }
};

// Bytes of the pixels that an IHDR chunk tells of.
uint64_t PixelBytes(std::span<const uint8_t, kHeaderSize> header) {
    ChunkHead sides;
    std::copy_n(header.begin(), kChunkHeadSize, sides.bytes.begin());
    constexpr std::array<uint8_t, 7> kSamples{1, 0, 3, 1, 2, 0, 4};  // by colour type
    const unsigned samples = kSamples[std::min<size_t>(header[9], 6)];
    return uint64_t{sides.Number(0)} * sides.Number(4) / 8 * samples * header[8];
}

}  // namespace

std::optional<uint64_t> FindPictureData(dib::ByteSource& source, uint64_t leastBytes) {
    uint64_t at = kSignatureSize;
    for (int chunk = 0; chunk < kMostChunks; ++chunk) {
        ChunkHead head;
        if (source.ReadAt(at, head.bytes) != head.bytes.size()) return std::nullopt;
        if (head.IsData()) return at;
        std::array<uint8_t, kHeaderSize> header;
        if (chunk == 0 && (source.ReadAt(at + kChunkHeadSize, header) != header.size() ||
                           PixelBytes(header) < leastBytes)) {
            return std::nullopt;
        }
        at += kChunkHeadSize + uint64_t{head.Length()} + kCheckSumSize;
    }
    return std::nullopt;
}

PictureData::PictureData(dib::ByteSource& source, uint64_t start)
    : source_(source), position_(start) {
    if (inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
    inflateValidate(&stream_, 0);
}

PictureData::~PictureData() {
    inflateEnd(&stream_);
}

size_t PictureData::Unpack(std::span<uint8_t> into) {
    stream_.next_out = into.data();
    stream_.avail_out = static_cast<uInt>(into.size());
    while (!ended_ && !streamEnded_ && stream_.avail_out != 0) {
        if (stream_.avail_in == 0 && !Refill()) break;
        const int state = inflate(&stream_, Z_NO_FLUSH);
        if (state == Z_STREAM_END) {
            streamEnded_ = true;
        } else if (state != Z_OK) {
            Fail(state == Z_MEM_ERROR ? Result::kOutOfMemory : Result::kBrokenData);
        }
    }
    if (streamEnded_ && !ended_) SkipRest();
    return into.size() - stream_.avail_out;
}

bool PictureData::Refill() {
    while (left_ == 0) {
        if ((inChunk_ && !EndChunk()) || !BeginChunk()) return false;
    }
    const std::span<uint8_t> part = std::span(input_).first(std::min<size_t>(left_, kReadSize));
    const auto got = source_.ReadAt(position_, part);
    if (!got) return Fail(Result::kReadError);
    if (*got == 0) {
        end_ = End::kCutShort;
        ended_ = true;
        return false;
    }
    position_ += *got;
    left_ -= static_cast<uint32_t>(*got);
    checkSum_ = crc32(checkSum_, part.data(), static_cast<uInt>(*got));
    stream_.next_in = input_.data();
    stream_.avail_in = static_cast<uInt>(*got);
    return true;
}

// The chunk that is no IDAT chunk any more stays unread.
bool PictureData::BeginChunk() {
    ChunkHead head;
    if (!ReadWhole(head.bytes)) return false;
    if (!head.IsData()) {
        position_ -= head.bytes.size();
        ended_ = true;
        return streamEnded_ ? false : Fail(Result::kBrokenData);
    }
    left_ = head.Length();
    if (left_ > kLongestChunk) return Fail(Result::kBrokenData);
    checkSum_ = crc32(0, &head.bytes[4], kNameSize);
    inChunk_ = true;
    return true;
}

bool PictureData::EndChunk() {
    inChunk_ = false;
    ChunkHead sum{};
    if (!ReadWhole(std::span(sum.bytes).first(kCheckSumSize))) return false;
    hasWrongSum_ |= sum.Number(0) != checkSum_;
    return true;
}

bool PictureData::ReadWhole(std::span<uint8_t> into) {
    const auto got = source_.ReadAt(position_, into);
    if (!got) return Fail(Result::kReadError);
    position_ += *got;
    if (*got == into.size()) return true;
    // Behind the end of the stream nothing is missing.
    end_ = streamEnded_ ? End::kRegular : End::kCutShort;
    ended_ = true;
    return false;
}

void PictureData::SkipRest() {
    while (Refill()) {
    }
}

bool PictureData::Fail(Result result) {
    failure_ = result;
    end_ = End::kFailed;
    ended_ = true;
    return false;
}

}  // namespace tessary::png
