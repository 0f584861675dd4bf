#include "plugins/axtessarc/zip_directory.h"

#include <zlib.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/name_encoding.h"

namespace tessary::unpack {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kRecordMark = 0x02014B50;
constexpr uint32_t kSignatureMark = 0x05054B50;  // may stand behind the records
constexpr uint32_t kEndMark = 0x06054B50;
constexpr uint32_t kEnd64Mark = 0x06064B50;
constexpr uint32_t kLocator64Mark = 0x07064B50;

constexpr size_t kRecordSize = 46;
constexpr size_t kEndSize = 22;
constexpr size_t kEnd64Size = 56;
constexpr size_t kLocator64Size = 20;
constexpr size_t kLongestComment = 0xFFFF;

// A field of this value stands in the ZIP64 extension.
constexpr uint32_t kElsewhere = 0xFFFFFFFF;

constexpr uint16_t kEncryptedFlag = 1;
constexpr uint16_t kUtf8Flag = 0x800;

std::optional<Bytes> ReadExactly(dib::ByteSource& source, uint64_t offset, uint64_t count) {
    if (offset > source.Size() || count > source.Size() - offset) return std::nullopt;
    Bytes bytes(static_cast<size_t>(count));
    if (source.ReadAt(offset, bytes) != bytes.size()) return std::nullopt;
    return bytes;
}

struct Extent {
    uint64_t offset;  // within the file
    uint64_t size;
    uint64_t shift;  // what offsets in the directory lack: other data before the archive
    uint16_t disk = 0;
};

// Where the directory of `size` bytes stands that ends at `end` and is said to begin at `offset`.
std::optional<Extent> DirectoryExtent(uint64_t end, uint64_t size, uint64_t offset) {
    if (size > end || offset > end - size) return std::nullopt;
    return Extent{end - size, size, end - size - offset};
}

std::optional<Extent> Zip64Extent(dib::ByteSource& source, std::span<const uint8_t> locator,
                                  uint64_t locatorOffset) {
    if (Read32(locator, 0) != kLocator64Mark) return std::nullopt;
    // Where it says, or right before the locator when other data was put before the archive.
    for (const uint64_t at : {Read64(locator, 8), locatorOffset - kEnd64Size}) {
        const auto end = ReadExactly(source, at, kEnd64Size);
        if (end && Read32(*end, 0) == kEnd64Mark) {
            return DirectoryExtent(at, Read64(*end, 40), Read64(*end, 48));
        }
    }
    return std::nullopt;
}

// What the end record at `at` of `tail`, which stands at `tailOffset` of the file, tells. Null when
// there is no directory.
std::optional<Extent> ExtentAt(dib::ByteSource& source, const Bytes& tail, uint64_t tailOffset,
                               size_t at) {
    const uint32_t size = Read32(tail, at + 12);
    const uint32_t offset = Read32(tail, at + 16);
    const bool mayBe64 =
        size == kElsewhere || offset == kElsewhere || Read16(tail, at + 10) == 0xFFFF;
    std::optional<Extent> found;
    if (mayBe64 && at >= kLocator64Size) {
        found = Zip64Extent(source, std::span(tail).subspan(at - kLocator64Size),
                            tailOffset + at - kLocator64Size);
    }
    if (!found) found = DirectoryExtent(tailOffset + at, size, offset);
    if (found) found->disk = Read16(tail, at + 4);
    if (!found || found->size == 0) return found;
    const auto mark = ReadExactly(source, found->offset, sizeof kRecordMark);
    return mark && Read32(*mark, 0) == kRecordMark ? found : std::nullopt;
}

// Looks for the end record from the end of the file on, behind a comment of any length. Comments
// may hold what looks like one: a record whose comment ends with the file comes first, and others
// count only with a directory.
std::optional<Extent> FindDirectory(dib::ByteSource& source) {
    const uint64_t tailSize =
        std::min<uint64_t>(source.Size(), kLongestComment + kEndSize + kLocator64Size);
    const uint64_t tailOffset = source.Size() - tailSize;
    const auto tail = ReadExactly(source, tailOffset, tailSize);
    if (!tail || tail->size() < kEndSize) return std::nullopt;
    for (const bool mustFit : {true, false}) {
        for (size_t at = tail->size() - kEndSize + 1; at-- > 0;) {
            if (Read32(*tail, at) != kEndMark) continue;
            const bool fits = at + kEndSize + Read16(*tail, at + 20) == tail->size();
            if (fits != mustFit) continue;
            const auto found = ExtentAt(source, *tail, tailOffset, at);
            if (found && (fits || found->size != 0)) return found;
        }
    }
    return std::nullopt;
}

std::string MethodName(uint16_t method) {
    switch (method) {
        case 0:
            return "store";
        case 8:
            return "deflate";
        case 9:
            return "deflat64";
        case 12:
            return "bzip2";
        case 14:
            return "lzma";
        case 93:
            return "zstd";
        case 95:
            return "xz";
        case 98:
            return "ppmd";
        case 99:
            return "aes";
        default:
            return "zip" + std::to_string(method);
    }
}

// Local time, in steps of two seconds.
int64_t TimeOfDos(uint16_t date, uint16_t time) {
    if (date == 0) return 0;
    std::tm parts{};
    parts.tm_year = (date >> 9) + 80;
    parts.tm_mon = (date >> 5 & 15) - 1;
    parts.tm_mday = date & 31;
    parts.tm_hour = time >> 11;
    parts.tm_min = time >> 5 & 63;
    parts.tm_sec = (time & 31) * 2;
    parts.tm_isdst = -1;
    return std::max<int64_t>(std::mktime(&parts), 0);
}

// The sizes and the offset that are too large for their fields, in the order in which they are
// missing.
void TakeZip64(std::span<const uint8_t> data, ZipRecord& record) {
    for (uint64_t* field :
         {&record.member.size, &record.member.compressedSize, &record.headerOffset}) {
        if (*field != kElsewhere) continue;
        if (data.size() < 8) return;
        *field = Read64(data, 0);
        data = data.subspan(8);
    }
}

// The fields behind the name: pairs of a number and a size, then data.
void TakeExtras(std::span<const uint8_t> extras, ZipRecord& record) {
    while (extras.size() >= 4) {
        const uint16_t number = Read16(extras, 0);
        const size_t size = std::min<size_t>(Read16(extras, 2), extras.size() - 4);
        const auto data = extras.subspan(4, size);
        if (number == 0x0001) {
            TakeZip64(data, record);
        } else if (number == 0x5455 && size >= 5 && (data[0] & 1) != 0) {  // Unix time
            record.member.time = static_cast<int32_t>(Read32(data, 1));
        } else if (number == 0x7075 && size > 5) {  // the name in UTF-8, if it is still the same
            const std::string& name = record.member.name;
            const auto sum = crc32(0, reinterpret_cast<const Bytef*>(name.data()),
                                   static_cast<uInt>(name.size()));
            if (Read32(data, 1) == sum) {
                record.member.name.assign(data.begin() + 5, data.end());
                record.member.nameIsUtf8 = true;
            }
        }
        extras = extras.subspan(4 + size);
    }
}

// By the attributes of MS-DOS and, where it was packed there, of Unix.
bool IsFile(const ZipRecord& record) {
    const std::string& name = record.member.name;
    if (name.empty() || name.back() == '/') return false;
    const uint32_t attributes = Read32(record.bytes, 38);
    constexpr uint32_t kFolder = 0x10;
    if ((attributes & kFolder) != 0 && record.member.size == 0) return false;
    constexpr uint8_t kUnix = 3;
    constexpr uint32_t kTypeMask = 0170000, kRegular = 0100000;
    const uint32_t type = record.bytes[5] == kUnix ? attributes >> 16 & kTypeMask : 0;
    return type == 0 || type == kRegular;
}

// The record at the start of `bytes`; null when there is no whole one.
std::optional<ZipRecord> ReadRecord(std::span<const uint8_t> bytes, uint64_t shift) {
    if (bytes.size() < kRecordSize || Read32(bytes, 0) != kRecordMark) return std::nullopt;
    const size_t nameSize = Read16(bytes, 28);
    const size_t extraSize = Read16(bytes, 30);
    const size_t size = kRecordSize + nameSize + extraSize + Read16(bytes, 32);
    if (bytes.size() < size) return std::nullopt;

    ZipRecord record{
        bytes.first(size), Read32(bytes, 42), Read16(bytes, 10), Read16(bytes, 34), false, {}};
    Member& member = record.member;
    const uint16_t flags = Read16(bytes, 8);
    const auto* const text = reinterpret_cast<const char*>(bytes.data() + kRecordSize);
    member.name.assign(text, nameSize);
    member.nameIsUtf8 = (flags & kUtf8Flag) != 0 || LooksLikeUtf8(member.name);
    member.encrypted = (flags & kEncryptedFlag) != 0;
    member.method = MethodName(record.method);
    member.time = TimeOfDos(Read16(bytes, 14), Read16(bytes, 12));
    member.crc = Read32(bytes, 16);
    member.compressedSize = Read32(bytes, 20);
    member.size = Read32(bytes, 24);
    TakeExtras(bytes.subspan(kRecordSize + nameSize, extraSize), record);
    record.headerOffset += shift;
    record.isFile = IsFile(record);
    return record;
}

}  // namespace

bool IsLastZipVolume(dib::ByteSource& source) {
    constexpr uint16_t kTold64 = 0xFFFF;
    const auto extent = FindDirectory(source);
    return extent && extent->disk != 0 && extent->disk != kTold64;
}

std::optional<ZipDirectory> ReadZipDirectory(dib::ByteSource& source) {
    const auto extent = FindDirectory(source);
    if (!extent) return std::nullopt;
    auto bytes = ReadExactly(source, extent->offset, extent->size);
    if (!bytes) return std::nullopt;
    ZipDirectory directory{std::move(*bytes), {}, extent->disk};
    std::span<const uint8_t> rest(directory.bytes);
    while (auto record = ReadRecord(rest, extent->shift)) {
        rest = rest.subspan(record->bytes.size());
        directory.records.push_back(std::move(*record));
    }
    if (directory.records.empty() && !directory.bytes.empty()) return std::nullopt;
    directory.isWhole = rest.empty() || (rest.size() >= 4 && Read32(rest, 0) == kSignatureMark);
    return directory;
}

}  // namespace tessary::unpack
