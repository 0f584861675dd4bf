// A PNG file as libpng reads it, but with the picture data unpacked already.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/common/result.h"
#include "plugins/iftesspng/picture_data.h"

namespace tessary::png {

// The bytes of the file up to the first IDAT chunk and behind the last one; between them the same
// data in other IDAT chunks, as a deflate stream of stored blocks, so that libpng only copies it.
// A thread of its own unpacks ahead: unpacking takes most of the time of a large picture, and so it
// goes on while libpng makes pixels of what is there. The chunks' check sums are 0, and so is that
// of the stream: the true ones are compared here.
class UnpackedPng {
  public:
    // `dataStart` is where the first IDAT chunk begins. The source outlives this, and is used by
    // nobody else between the first Read beyond that place and the end of this object.
    UnpackedPng(dib::ByteSource& source, uint64_t dataStart)
        : source_(source), dataStart_(dataStart) {}
    UnpackedPng(const UnpackedPng&) = delete;
    UnpackedPng& operator=(const UnpackedPng&) = delete;
    ~UnpackedPng();

    // The next bytes; their count is less than asked for at the end of a file that is cut short.
    // Empty when they cannot be had, for the reason in Failure.
    std::optional<size_t> Read(std::span<uint8_t> out) noexcept;
    codec::Result Failure() const { return failure_; }
    // Whether the file ends within the picture data.
    bool IsCutInData() const { return stage_ == Stage::kCutShort; }
    // Whether the check sum of a chunk that has been read was wrong.
    bool HasWrongSum() const { return piece_.hasWrongSum; }

  private:
    // Where the bytes come from.
    enum class Stage { kBefore, kData, kBehind, kCutShort, kFailed };

    // An IDAT chunk, and what comes behind it.
    struct Piece {
        std::vector<uint8_t> chunk;
        Stage next = Stage::kData;
        codec::Result failure = codec::Result::kSuccess;
        uint64_t behind = 0;  // where the file goes on
        bool hasWrongSum = false;
    };
    using Lock = std::unique_lock<std::mutex>;
    static constexpr size_t kMostPieces = 4;

    // Each reads a part at most; empty and 0 as above.
    std::optional<size_t> ReadSome(std::span<uint8_t> out);
    std::optional<size_t> ReadFile(std::span<uint8_t> out);
    size_t ReadPiece(std::span<uint8_t> out);

    void Start();
    void UnpackAhead() noexcept;
    void MakePiece(Piece& piece) noexcept;
    // Puts the next one into piece_.
    void TakePiece();

    dib::ByteSource& source_;
    const uint64_t dataStart_;
    Stage stage_ = Stage::kBefore;
    codec::Result failure_ = codec::Result::kSuccess;
    uint64_t position_ = 0;  // in the file, before and behind the data
    Piece piece_;            // being read
    size_t piecePosition_ = 0;

    std::optional<PictureData> data_;  // the thread's, where there is one
    std::mutex mutex_;
    std::condition_variable changed_;
    std::array<Piece, kMostPieces> pieces_;  // piece i in place i modulo their number
    size_t made_ = 0;
    size_t taken_ = 0;
    bool stops_ = false;
    std::jthread thread_;  // last: it is joined before the rest goes
};

}  // namespace tessary::png
