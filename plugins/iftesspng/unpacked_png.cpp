#include "plugins/iftesspng/unpacked_png.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

namespace tessary::png {
namespace {

using codec::Result;

constexpr size_t kStoredSize = 65535;  // the most that a stored block holds
// Handing a piece from thread to thread takes as long as unpacking some KB.
constexpr size_t kBlocksInPiece = 4;

// A chunk of stored blocks: length and "IDAT"; of each block a head and the bytes; a check sum.
// Numbers of chunks are big-endian, those of blocks little-endian.
constexpr size_t kChunkHeadSize = 8;
constexpr size_t kBlockHeadSize = 5;
constexpr size_t kCheckSumSize = 4;
constexpr size_t kPieceSize =
    kChunkHeadSize + kBlocksInPiece * (kBlockHeadSize + kStoredSize) + kCheckSumSize;

// The head of the zlib stream (RFC 1950), in a chunk of its own.
constexpr std::array<uint8_t, 14> kFirstChunk{0,   0,    0,    2, 'I', 'D', 'A',
                                              'T', 0x78, 0x01, 0, 0,   0,   0};
// An empty last block, and the check sum of the stream.
constexpr std::array<uint8_t, 21> kLastChunk{0,    0,    0, 9, 'I', 'D', 'A', 'T', 1, 0, 0,
                                             0xFF, 0xFF, 0, 0, 0,   0,   0,   0,   0, 0};

void WriteChunkHead(std::span<uint8_t> out, size_t length) {
    const std::array<uint8_t, kChunkHeadSize> head{0,
                                                   static_cast<uint8_t>(length >> 16),
                                                   static_cast<uint8_t>(length >> 8),
                                                   static_cast<uint8_t>(length),
                                                   'I',
                                                   'D',
                                                   'A',
                                                   'T'};
    std::ranges::copy(head, out.begin());
}

void WriteBlockHead(std::span<uint8_t> out, size_t size) {
    const std::array<uint8_t, kBlockHeadSize> head{
        0,  // stored, and not the last one
        static_cast<uint8_t>(size), static_cast<uint8_t>(size >> 8), static_cast<uint8_t>(~size),
        static_cast<uint8_t>(~size >> 8)};
    std::ranges::copy(head, out.begin());
}

}  // namespace

UnpackedPng::~UnpackedPng() {
    const Lock lock(mutex_);
    stops_ = true;
    changed_.notify_all();
}

std::optional<size_t> UnpackedPng::Read(std::span<uint8_t> out) noexcept {
    try {
        size_t done = 0;
        while (done < out.size()) {
            const auto got = ReadSome(out.subspan(done));
            if (!got) return std::nullopt;
            if (*got == 0) break;
            done += *got;
        }
        return done;
    } catch (const std::bad_alloc&) {
        failure_ = Result::kOutOfMemory;
        return std::nullopt;
    }
}

std::optional<size_t> UnpackedPng::ReadSome(std::span<uint8_t> out) {
    // A piece that could not be made has no bytes, only what comes next.
    while (stage_ == Stage::kData && piecePosition_ == piece_.chunk.size()) {
        stage_ = piece_.next;
        failure_ = piece_.failure;
        position_ = piece_.behind;
        if (stage_ == Stage::kData) TakePiece();
        piecePosition_ = 0;
    }
    switch (stage_) {
        case Stage::kBefore:
        case Stage::kBehind:
            return ReadFile(out);
        case Stage::kData:
            return ReadPiece(out);
        case Stage::kCutShort:
            return 0;
        default:
            return std::nullopt;
    }
}

std::optional<size_t> UnpackedPng::ReadFile(std::span<uint8_t> out) {
    if (stage_ == Stage::kBefore && out.size() > dataStart_ - position_) {
        out = out.first(static_cast<size_t>(dataStart_ - position_));
    }
    const auto got = source_.ReadAt(position_, out);
    if (!got) {
        failure_ = Result::kReadError;
        return std::nullopt;
    }
    position_ += *got;
    if (stage_ == Stage::kBefore && position_ == dataStart_) {
        piece_.chunk.assign(kFirstChunk.begin(), kFirstChunk.end());
        stage_ = Stage::kData;
    }
    return got;
}

size_t UnpackedPng::ReadPiece(std::span<uint8_t> out) {
    const size_t count = std::min(out.size(), piece_.chunk.size() - piecePosition_);
    std::memcpy(out.data(), &piece_.chunk[piecePosition_], count);
    piecePosition_ += count;
    return count;
}

// Not before the data itself is asked for: who only wants to know the picture's form needs none.
void UnpackedPng::Start() {
    data_.emplace(source_, dataStart_);
    try {
        thread_ = std::jthread([this] { UnpackAhead(); });
    } catch (const std::exception&) {
        // Then it is unpacked where it is read.
    }
}

// The buffers go round: fresh memory would cost more than the copying.
void UnpackedPng::TakePiece() {
    if (!data_) Start();
    if (!thread_.joinable()) return MakePiece(piece_);
    Lock lock(mutex_);
    changed_.wait(lock, [this] { return taken_ != made_; });
    std::swap(piece_, pieces_[taken_++ % kMostPieces]);
    changed_.notify_all();
}

void UnpackedPng::UnpackAhead() noexcept {
    for (bool goesOn = true; goesOn;) {
        Piece& piece = pieces_[made_ % kMostPieces];
        MakePiece(piece);
        goesOn = piece.next == Stage::kData;
        Lock lock(mutex_);
        ++made_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return stops_ || made_ - taken_ < kMostPieces; });
        if (stops_) return;
    }
}

void UnpackedPng::MakePiece(Piece& piece) noexcept {
    piece.next = Stage::kData;
    try {
        std::vector<uint8_t>& chunk = piece.chunk;
        chunk.resize(kPieceSize);
        const std::span<uint8_t> out(chunk);
        size_t end = kChunkHeadSize;
        size_t size = kStoredSize;
        for (size_t block = 0; block < kBlocksInPiece && size == kStoredSize; ++block) {
            size = data_->Unpack(out.subspan(end + kBlockHeadSize, kStoredSize));
            WriteBlockHead(out.subspan(end), size);
            end += kBlockHeadSize + size;
        }
        WriteChunkHead(out, end - kChunkHeadSize);
        std::ranges::fill(out.subspan(end, kCheckSumSize), uint8_t{0});
        piece.hasWrongSum = data_->HasWrongSum();
        if (size == kStoredSize) return;
        chunk.resize(end + kCheckSumSize);
        switch (data_->HowItEnded()) {
            case PictureData::End::kRegular:
                chunk.insert(chunk.end(), kLastChunk.begin(), kLastChunk.end());
                piece.next = Stage::kBehind;
                piece.behind = data_->Behind();
                break;
            case PictureData::End::kCutShort:
                piece.next = Stage::kCutShort;
                break;
            case PictureData::End::kFailed:
                piece.next = Stage::kFailed;
                piece.failure = data_->Failure();
                break;
        }
    } catch (const std::bad_alloc&) {
        piece = {{}, Stage::kFailed, Result::kOutOfMemory, 0, false};
    }
}

}  // namespace tessary::png
