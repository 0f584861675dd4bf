#include "plugins/axtessarc/archive_format.h"

#include <lzma.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <memory>

namespace tessary::unpack {
namespace {

using namespace std::string_view_literals;

struct Signature {
    std::string_view bytes;
    Format format;
};

constexpr Signature kSignatures[] = {
    {"PK\3\4"sv, Format::kZip},
    {"PK\5\6"sv, Format::kZip},         // without members
    {"PK\7\x8PK\3\4"sv, Format::kZip},  // the first of several disks
    {"PK00PK\3\4"sv, Format::kZip},     // of which one was enough
    {"7z\xBC\xAF\x27\x1C"sv, Format::kSevenZip},
    {"Rar!\x1A\x07\0"sv, Format::kRar},
    {"Rar!\x1A\x07\1\0"sv, Format::kRar5},
    {"MSCF\0\0\0\0"sv, Format::kCab},
    {"\x1F\x8B\x08"sv, Format::kGzip},
    {"BZh"sv, Format::kBzip2},
    {"\xFD\x37zXZ\0"sv, Format::kXz},
};

constexpr size_t kTarBlockSize = 512;
constexpr size_t kTarSum = 148;
constexpr size_t kTarSumSize = 8;

// The sum of a tar header: over all of its bytes, with blanks for the sum itself. Some old
// programs took the bytes as signed ones.
bool IsTarHeader(std::span<const uint8_t> header) {
    if (header.size() < kTarBlockSize || header[0] == 0) return false;
    int stored = 0;
    size_t digits = 0;
    for (const uint8_t byte : header.subspan(kTarSum, kTarSumSize)) {
        if (byte >= '0' && byte <= '7') {
            stored = stored * 8 + (byte - '0');
            ++digits;
        } else if (byte != ' ' && byte != 0) {
            return false;
        }
    }
    int sum = 0;
    int signedSum = 0;
    for (size_t i = 0; i < kTarBlockSize; ++i) {
        const uint8_t byte = i >= kTarSum && i < kTarSum + kTarSumSize ? uint8_t{' '} : header[i];
        sum += byte;
        signedSum += static_cast<int8_t>(byte);
    }
    return digits != 0 && (stored == sum || stored == signedSum);
}

// The method of the first member at its place, and a header level that there is.
bool IsLzhHeader(std::span<const uint8_t> header) {
    if (header.size() <= 20 || header[2] != '-' || header[6] != '-' || header[20] > 3) return false;
    const std::string_view family(reinterpret_cast<const char*>(&header[3]), 2);
    return (family == "lh" || family == "lz" || family == "pm") && header[5] > ' ';
}

using TarBlock = std::array<uint8_t, kTarBlockSize>;

// Whether a whole block comes out of the beginning of a compressed stream.
bool Inflate(std::span<const uint8_t> header, TarBlock& block) {
    z_stream stream{};
    constexpr int kGzipOnly = 16;
    if (inflateInit2(&stream, kGzipOnly + MAX_WBITS) != Z_OK) return false;
    stream.next_in = const_cast<Bytef*>(header.data());
    stream.avail_in = static_cast<uInt>(header.size());
    stream.next_out = block.data();
    stream.avail_out = static_cast<uInt>(block.size());
    inflate(&stream, Z_SYNC_FLUSH);
    inflateEnd(&stream);
    return stream.avail_out == 0;
}

bool UnpackXz(std::span<const uint8_t> header, TarBlock& block) {
    constexpr uint64_t kMostMemory = 256u << 20;
    lzma_stream stream = LZMA_STREAM_INIT;
    if (lzma_stream_decoder(&stream, kMostMemory, 0) != LZMA_OK) return false;
    stream.next_in = header.data();
    stream.avail_in = header.size();
    stream.next_out = block.data();
    stream.avail_out = block.size();
    while (lzma_code(&stream, LZMA_RUN) == LZMA_OK && stream.avail_in != 0 && stream.avail_out != 0)
        continue;
    lzma_end(&stream);
    return stream.avail_out == 0;
}

}  // namespace

bool EndsWith(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), name.rbegin(),
                      [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b + 32 : b); });
}

Format DetectFormat(std::span<const uint8_t> header) {
    const std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    for (const Signature& signature : kSignatures) {
        if (text.starts_with(signature.bytes)) return signature.format;
    }
    if (IsLzhHeader(header)) return Format::kLzh;
    return IsTarHeader(header) ? Format::kTar : Format::kNone;
}

bool IsArchive(std::span<const uint8_t> header, std::string_view fileName) {
    const auto isNamed = [fileName](std::initializer_list<std::string_view> endings) {
        return std::any_of(endings.begin(), endings.end(), [fileName](std::string_view ending) {
            return EndsWith(fileName, ending);
        });
    };
    TarBlock block;
    switch (DetectFormat(header)) {
        case Format::kNone:
            return false;
        case Format::kGzip:
            return isNamed({".gz", ".tgz"}) || (Inflate(header, block) && IsTarHeader(block));
        case Format::kBzip2:  // packed in blocks that are larger than a header
            return isNamed({".bz2", ".tbz", ".tbz2"});
        case Format::kXz:
            return isNamed({".xz", ".txz"}) || (UnpackXz(header, block) && IsTarHeader(block));
        default:
            return true;
    }
}

}  // namespace tessary::unpack
