#include "plugins/axtessarc/zip_archive.h"

#include <algorithm>
#include <array>

#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/stream_reader.h"

namespace tessary::unpack {
namespace {

using codec::Result;

constexpr uint32_t kHeaderMark = 0x04034B50;
constexpr size_t kHeaderSize = 30;
constexpr size_t kRecordSize = 46;

// What libarchive unpacks: stored, deflate, bzip2, LZMA, XZ and PPMd.
constexpr std::array<uint16_t, 6> kMethods{0, 8, 12, 14, 95, 98};

// An archive of one member: a part of the source with that member's header and data, and a
// directory of one record behind it.
class OneMemberArchive final : public dib::ByteSource {
  public:
    OneMemberArchive(dib::ByteSource& source, uint64_t offset, uint64_t size,
                     std::span<const uint8_t> record)
        : source_(source), offset_(offset), size_(size), tail_(record.begin(), record.end()) {
        // The record's own offset becomes 0, on disk 0.
        std::fill_n(tail_.begin() + 34, 2, uint8_t{0});
        std::fill_n(tail_.begin() + 42, 4, uint8_t{0});
        AppendEnd(record.size());
    }

    uint64_t Size() const override { return size_ + tail_.size(); }

    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        size_t done = 0;
        if (offset < size_) {
            const auto part =
                into.first(static_cast<size_t>(std::min<uint64_t>(into.size(), size_ - offset)));
            const auto got = source_.ReadAt(offset_ + offset, part);
            if (got != part.size()) return got;
            done = part.size();
        }
        dib::MemorySource tail(tail_);
        return done + *tail.ReadAt(offset + done - size_, into.subspan(done));
    }

  private:
    // The end record, in its 64-bit form too: the member may be large.
    void AppendEnd(size_t recordSize) {
        const uint64_t end64Offset = size_ + recordSize;
        const auto append = [this](uint64_t value, size_t count) {
            AppendNumber(tail_, value, count);
        };
        append(0x06064B50, 4);
        append(44, 8);  // bytes that follow
        append(45, 2);  // version needed, and made by
        append(45, 2);
        append(0, 8);  // disks
        append(1, 8);  // records on this disk, and on all
        append(1, 8);
        append(recordSize, 8);
        append(size_, 8);

        append(0x07064B50, 4);
        append(0, 4);
        append(end64Offset, 8);
        append(1, 4);

        append(0x06054B50, 4);
        append(0, 4);
        append(1, 2);
        append(1, 2);
        append(recordSize, 4);
        append(std::min<uint64_t>(size_, 0xFFFFFFFF), 4);
        append(0, 2);  // length of the comment
    }

    dib::ByteSource& source_;
    uint64_t offset_;
    uint64_t size_;
    std::vector<uint8_t> tail_;
};

}  // namespace

Result ZipArchive::Open(dib::ByteSource& source, std::unique_ptr<ArchiveReader>& reader) {
    auto directory = ReadZipDirectory(source);
    if (!directory) return Result::kBrokenData;
    reader.reset(new ZipArchive(source, std::move(*directory)));
    return Result::kSuccess;
}

ZipArchive::ZipArchive(dib::ByteSource& source, ZipDirectory directory)
    : source_(source), directory_(std::move(directory)) {
    if (!directory_.isWhole) listEnd_ = Result::kBrokenData;
    std::erase_if(directory_.records, [](const ZipRecord& record) { return !record.isFile; });
    members_.reserve(directory_.records.size());
    for (ZipRecord& record : directory_.records)
        members_.push_back(std::move(record.member));
}

// Whether the member's own header has the name that the directory tells. Where it is said to be on
// another disk, there may be another member's.
bool ZipArchive::HasNameOf(const ZipRecord& record) const {
    const auto name = record.bytes.subspan(kRecordSize, Read16(record.bytes, 28));
    std::vector<uint8_t> found(name.size());
    return source_.ReadAt(record.headerOffset + kHeaderSize, found) == found.size() &&
           std::ranges::equal(name, found);
}

Result ZipArchive::Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    const ZipRecord& record = directory_.records[index];
    const Member& member = members_[index];
    const bool isKnown =
        std::find(kMethods.begin(), kMethods.end(), record.method) != kMethods.end();
    if (member.encrypted || !isKnown) return Result::kUnknownFormat;

    std::array<uint8_t, kHeaderSize> header{};
    const auto got = source_.ReadAt(record.headerOffset, header);
    if (!got) return Result::kReadError;
    if (*got != header.size() || Read32(header, 0) != kHeaderMark) return Result::kBrokenData;
    if (record.disk != directory_.disk && !HasNameOf(record)) return Result::kBrokenData;
    const uint64_t headerSize = kHeaderSize + Read16(header, 26) + Read16(header, 28);
    const uint64_t left = source_.Size() - record.headerOffset;
    if (headerSize > left || member.compressedSize > left - headerSize) return Result::kBrokenData;

    OneMemberArchive archive(source_, record.headerOffset, headerSize + member.compressedSize,
                             record.bytes);
    StreamReader reader(archive, Format::kZip, ZipMode::kDirectory);
    if (reader.Next(progress) == nullptr) {
        const Result failure = reader.Failure();
        return failure == Result::kSuccess ? Result::kBrokenData : failure;
    }
    return reader.ReadData(member, sink, progress);
}

}  // namespace tessary::unpack
