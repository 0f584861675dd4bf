#include "plugins/axtessarc/archive_marks.h"

#include <algorithm>
#include <array>

#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/zip_directory.h"

namespace tessary::unpack {
namespace {

using Head = std::array<uint8_t, 64>;  // zeros behind the end of the file

constexpr size_t kDigits = 3;

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

// Whether the name ends with a dot and three digits, as programs that cut files call the pieces.
bool EndsWithNumber(std::string_view name) {
    if (name.size() <= kDigits + 1 || name[name.size() - kDigits - 1] != '.') return false;
    return std::ranges::all_of(name.substr(name.size() - kDigits), IsDigit);
}

ArchiveMarks ZipMarks(const Head& head, dib::ByteSource& source) {
    constexpr uint32_t kSetMark = 0x08074B50;
    constexpr uint16_t kMasked = 0x2000;
    const bool isFirst = Read32(head, 0) == kSetMark;
    const size_t member = isFirst ? 4 : 0;
    constexpr uint32_t kMemberMark = 0x04034B50;
    const bool isMasked =
        Read32(head, member) == kMemberMark && (Read16(head, member + 6) & kMasked) != 0;
    return {.isVolume = isFirst || IsLastZipVolume(source), .directoryIsEncrypted = isMasked};
}

ArchiveMarks RarMarks(const Head& head) {
    constexpr uint8_t kMainHeader = 0x73;
    if (head[9] != kMainHeader) return {};
    const uint16_t flags = Read16(head, 10);
    return {.isVolume = (flags & 1) != 0, .directoryIsEncrypted = (flags & 0x80) != 0};
}

// RAR 5: numbers of 7 bits a byte, the lowest first.
class Numbers {
  public:
    explicit Numbers(const Head& head, size_t at) : head_(head), at_(at) {}
    uint64_t Next() {
        uint64_t value = 0;
        for (unsigned shift = 0; at_ < head_.size() && shift < 63; shift += 7) {
            const uint8_t byte = head_[at_++];
            value |= uint64_t{byte & 0x7Fu} << shift;
            if ((byte & 0x80) == 0) break;
        }
        return value;
    }

  private:
    const Head& head_;
    size_t at_;
};

ArchiveMarks Rar5Marks(const Head& head) {
    constexpr size_t kFirstBlock = 8, kSumSize = 4;
    constexpr uint64_t kMainHeader = 1, kEncryptionHeader = 4;
    Numbers numbers(head, kFirstBlock + kSumSize);
    numbers.Next();  // the block's size
    const uint64_t kind = numbers.Next();
    if (kind != kMainHeader) return {.directoryIsEncrypted = kind == kEncryptionHeader};
    const uint64_t flags = numbers.Next();
    if ((flags & 1) != 0) numbers.Next();  // size of what stands behind the fields
    if ((flags & 2) != 0) numbers.Next();  // size of the data
    return {.isVolume = (numbers.Next() & 1) != 0};
}

ArchiveMarks CabMarks(const Head& head) {
    constexpr uint16_t kHasNeighbours = 3;
    return {.isVolume = (Read16(head, 30) & kHasNeighbours) != 0};
}

ArchiveMarks FormatMarks(const Head& head, dib::ByteSource& source, Format format) {
    switch (format) {
        case Format::kZip:
            return ZipMarks(head, source);
        case Format::kRar:
            return RarMarks(head);
        case Format::kRar5:
            return Rar5Marks(head);
        case Format::kCab:
            return CabMarks(head);
        default:
            return {};
    }
}

}  // namespace

ArchiveMarks ReadMarks(dib::ByteSource& source, Format format, std::string_view fileName) {
    Head head{};
    if (!source.ReadAt(0, head)) return {};
    ArchiveMarks marks = FormatMarks(head, source, format);
    marks.mayBePiece = EndsWithNumber(fileName);
    return marks;
}

bool IsPieceName(std::string_view fileName) {
    if (!EndsWithNumber(fileName)) return false;
    fileName.remove_suffix(kDigits + 1);
    return std::ranges::any_of(std::array<std::string_view, 3>{".7z", ".zip", ".rar"},
                               [&](std::string_view ending) { return EndsWith(fileName, ending); });
}

}  // namespace tessary::unpack
