// XBM: a bitmap as a part of a C program. Format: the manual of Xlib, "Bitmap file".
#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr std::string_view kDefine = "#define";
constexpr size_t kMostWord = 256;

bool IsDigit(int byte) {
    return byte >= '0' && byte <= '9';
}

bool IsWordByte(int byte) {
    return byte == '_' || byte == '#' || IsDigit(byte) || (byte >= 'a' && byte <= 'z') ||
           (byte >= 'A' && byte <= 'Z');
}

// The next word or number; empty at the end. Skips all else, and comments; stops behind `stop`.
std::string NextWord(ByteInput& input, int stop = -2) {
    std::string word;
    for (int byte = input.Peek(); byte >= 0; byte = input.Peek()) {
        if (IsWordByte(byte)) {
            if (word.size() < kMostWord) word += static_cast<char>(byte);
        } else if (!word.empty() || byte == stop) {
            return word;
        }
        input.Byte();
        if (byte != '/' || input.Peek() != '*') continue;
        input.Byte();
        for (int last = 0, next = input.Byte(); next >= 0 && (last != '*' || next != '/');
             next = input.Byte())
            last = next;
    }
    return word;
}

struct XbmHeader {
    uint32_t width = 0;
    uint32_t height = 0;
    unsigned unitBits = 8;  // of a number; 16 in files of X10
    uint64_t bits = 0;      // where the numbers begin
};

bool ReadHeader(ByteInput& input, XbmHeader& header) {
    for (;;) {
        const std::string word = NextWord(input, '{');
        if (word.empty()) break;
        if (word == "short") header.unitBits = 16;
        if (word != kDefine) continue;
        const std::string name = NextWord(input);
        const unsigned long value = std::strtoul(NextWord(input).c_str(), nullptr, 0);
        const auto side = static_cast<uint32_t>(std::min(value, 0x7FFFFFFFul));
        if (name.ends_with("width")) header.width = side;
        if (name.ends_with("height")) header.height = side;
    }
    if (input.Byte() != '{') return false;
    header.bits = input.Position();
    return header.width != 0 && header.height != 0;
}

class XbmReader final : public PictureReader {
  public:
    XbmReader(dib::ByteSource& source, const XbmHeader& header)
        : header_(header), input_(source, header.bits) {
        outline_.width = header.width;
        outline_.height = header.height;
        outline_.pixels = Pixels::kIndexed;
        outline_.tableBits = 1;
        outline_.palette = {{0xFF, 0xFF, 0xFF, 0}, {0, 0, 0, 0}};
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        for (uint32_t x = 0; x < header_.width; x += header_.unitBits) {
            const std::string word = NextWord(input_, '}');
            if (word.empty() || !IsDigit(word[0])) return x;
            const unsigned long bits = std::strtoul(word.c_str(), nullptr, 0);
            const uint32_t count = std::min(header_.width - x, uint32_t{header_.unitBits});
            for (uint32_t i = 0; i < count; ++i)
                row[x + i] = bits >> i & 1;
        }
        return header_.width;
    }

  private:
    const XbmHeader header_;
    ByteInput input_;
};

// "#define", perhaps behind a comment, and a name of one of the sides.
bool IsXbm(std::span<const uint8_t> header) {
    std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    if (text.starts_with("/*")) {
        const size_t end = text.find("*/");
        if (end == std::string_view::npos) return false;
        text.remove_prefix(end + 2);
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    }
    if (!text.starts_with(kDefine)) return false;
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    return line.find("width") != std::string_view::npos ||
           line.find("height") != std::string_view::npos;
}

Result OpenXbm(dib::ByteSource& source, codec::Progress&, std::unique_ptr<PictureReader>& reader) {
    ByteInput input(source);
    XbmHeader header;
    if (!ReadHeader(input, header)) return Result::kBrokenData;
    reader = std::make_unique<XbmReader>(source, header);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kXbm{L"XBM", IsXbm, OpenXbm};

}  // namespace tessary::misc
