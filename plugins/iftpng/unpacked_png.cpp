#include "plugins/iftpng/unpacked_png.h"

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

// A chunk of one stored block: length, "IDAT", the head of the block; then the bytes and a check
// sum. Numbers of chunks are big-endian, those of blocks little-endian.
constexpr size_t kChunkHeadSize = 8;
constexpr size_t kBlockHeadSize = 5;
constexpr size_t kHeadSize = kChunkHeadSize + kBlockHeadSize;
constexpr size_t kCheckSumSize = 4;

// The head of the zlib stream (RFC 1950), in a chunk of its own.
constexpr std::array<uint8_t, 14> kFirstChunk{0,   0,    0,    2, 'I', 'D', 'A',
                                              'T', 0x78, 0x01, 0, 0,   0,   0};
// An empty last block, and the check sum of the stream.
constexpr std::array<uint8_t, 21> kLastChunk{0,    0,    0, 9, 'I', 'D', 'A', 'T', 1, 0, 0,
                                             0xFF, 0xFF, 0, 0, 0,   0,   0,   0,   0, 0};

void WriteHead(std::vector<uint8_t>& chunk, size_t size) {
    const size_t length = kBlockHeadSize + size;
    const std::array<uint8_t, kHeadSize> head{
        0,
        static_cast<uint8_t>(length >> 16),
        static_cast<uint8_t>(length >> 8),
        static_cast<uint8_t>(length),
        'I',
        'D',
        'A',
        'T',
        0,  // stored, and not the last one
        static_cast<uint8_t>(size),
        static_cast<uint8_t>(size >> 8),
        static_cast<uint8_t>(~size),
        static_cast<uint8_t>(~size >> 8),
    };
    std::ranges::copy(head, chunk.begin());
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
    if (stage_ == Stage::kData && piecePosition_ == piece_.chunk.size()) {
        stage_ = piece_.next;
        failure_ = piece_.failure;
        position_ = piece_.behind;
        if (stage_ == Stage::kData) piece_ = NextPiece();
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

UnpackedPng::Piece UnpackedPng::NextPiece() {
    if (!data_) Start();
    if (!thread_.joinable()) return MakePiece();
    Lock lock(mutex_);
    changed_.wait(lock, [this] { return taken_ != made_; });
    Piece piece = std::move(pieces_[taken_++ % kMostPieces]);
    changed_.notify_all();
    return piece;
}

void UnpackedPng::UnpackAhead() noexcept {
    for (bool goesOn = true; goesOn;) {
        Piece piece = MakePiece();
        goesOn = piece.next == Stage::kData;
        Lock lock(mutex_);
        changed_.wait(lock, [this] { return stops_ || made_ - taken_ < kMostPieces; });
        if (stops_) return;
        pieces_[made_++ % kMostPieces] = std::move(piece);
        changed_.notify_all();
    }
}

UnpackedPng::Piece UnpackedPng::MakePiece() noexcept {
    Piece piece;
    try {
        std::vector<uint8_t>& chunk = piece.chunk;
        chunk.resize(kHeadSize + kStoredSize + kCheckSumSize);
        const size_t size = data_->Unpack(std::span(chunk).subspan(kHeadSize, kStoredSize));
        WriteHead(chunk, size);
        std::fill_n(chunk.begin() + static_cast<ptrdiff_t>(kHeadSize + size), kCheckSumSize, 0);
        chunk.resize(kHeadSize + size + kCheckSumSize);
        if (size == kStoredSize) return piece;
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
        piece = {{}, Stage::kFailed, Result::kOutOfMemory, 0};
    }
    return piece;
}

}  // namespace tessary::png
