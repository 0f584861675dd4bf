#include "helpers/metadata/raw_exif.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <string>
#include <string_view>

#include "helpers/metadata/exif_data.h"

namespace tessary::metadata {
namespace {

constexpr uint64_t kFirstChunk = 8;
constexpr size_t kHeadSize = 8;  // length and name
constexpr size_t kNameSize = 4;
constexpr size_t kSumSize = 4;
constexpr int kMostChunks = 1000;
// Of a text: EXIF data have 64 KB at most, each byte two digits, and there are ends of lines.
constexpr size_t kLongestText = 256u << 10;

constexpr std::string_view kKeywords[] = {"Raw profile type exif", "Raw profile type APP1"};

uint32_t Number(std::span<const uint8_t> bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

std::string_view TextOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string Unpacked(std::string_view packed) {
    std::string text(kLongestText, '\0');
    auto size = static_cast<uLongf>(text.size());
    const int result = uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                                  reinterpret_cast<const Bytef*>(packed.data()),
                                  static_cast<uLong>(packed.size()));
    text.resize(result == Z_OK ? size : 0);
    return text;
}

int DigitOf(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// An empty line, a name, a count of bytes, and these in hexadecimal digits. Anything else is
// damage.
std::vector<uint8_t> BytesIn(std::string_view text) {
    constexpr std::string_view kBlanks = " \r\n\t";
    const auto skipBlanks = [&] {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    };
    skipBlanks();
    text.remove_prefix(std::min(text.find('\n'), text.size()));
    skipBlanks();
    size_t count = 0;
    const auto number = std::from_chars(text.data(), text.data() + text.size(), count);
    if (number.ec != std::errc() || count > text.size() / 2) return {};
    text.remove_prefix(static_cast<size_t>(number.ptr - text.data()));
    std::vector<uint8_t> bytes;
    bytes.reserve(count);
    for (skipBlanks(); !text.empty(); skipBlanks()) {
        const int high = DigitOf(text[0]);
        const int low = text.size() > 1 ? DigitOf(text[1]) : -1;
        if (high < 0 || low < 0 || bytes.size() == count) return {};
        bytes.push_back(static_cast<uint8_t>(high << 4 | low));
        text.remove_prefix(2);
    }
    return bytes.size() == count ? bytes : std::vector<uint8_t>();
}

// Of a chunk's name and data.
std::vector<uint8_t> ExifIn(std::string_view chunk) {
    const bool isPacked = chunk.starts_with("zTXt");
    if (!isPacked && !chunk.starts_with("tEXt")) return {};
    chunk.remove_prefix(kNameSize);
    const size_t end = chunk.find('\0');
    if (std::ranges::find(kKeywords, chunk.substr(0, end)) == std::end(kKeywords)) return {};
    chunk.remove_prefix(end + 1);
    if (isPacked && !chunk.starts_with('\0')) return {};  // the method
    std::vector<uint8_t> bytes = isPacked ? BytesIn(Unpacked(chunk.substr(1))) : BytesIn(chunk);
    // What stands in a JPEG file before the structure may be there or not; other data than EXIF may
    // be there, too.
    if (TextOf(bytes).starts_with(TextOf(kExifName))) {
        bytes.erase(bytes.begin(), bytes.begin() + std::size(kExifName));
    }
    const std::string_view begin = TextOf(bytes).substr(0, 2);
    return begin == "II" || begin == "MM" ? bytes : std::vector<uint8_t>();
}

}  // namespace

std::vector<uint8_t> FindRawExif(dib::ByteSource& source) {
    uint64_t at = kFirstChunk;
    std::vector<uint8_t> chunk;
    for (int i = 0; i < kMostChunks; ++i) {
        std::array<uint8_t, kHeadSize> head{};
        if (source.ReadAt(at, head) != head.size()) return {};
        const uint32_t length = Number(head);
        const std::string_view name = TextOf(head).substr(kHeadSize - kNameSize);
        if (name == "IDAT") return {};
        if ((name == "tEXt" || name == "zTXt") && length <= kLongestText) {
            chunk.resize(kNameSize + length + kSumSize);
            if (source.ReadAt(at + kHeadSize - kNameSize, chunk) != chunk.size()) return {};
            const auto named = std::span(chunk).first(kNameSize + length);
            const uint32_t sum = Number(std::span(chunk).last(kSumSize));
            if (crc32(0, named.data(), static_cast<uInt>(named.size())) == sum) {
                std::vector<uint8_t> exif = ExifIn(TextOf(named));
                if (!exif.empty()) return exif;
            }
        }
        at += kHeadSize + uint64_t{length} + kSumSize;
    }
    return {};
}

}  // namespace tessary::metadata
