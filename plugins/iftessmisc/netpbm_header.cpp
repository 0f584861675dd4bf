#include "plugins/iftessmisc/netpbm_header.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

namespace tessary::misc {
namespace {

constexpr int64_t kMostNumber = 999'999'999;
constexpr uint32_t kMostValue = 65535;
constexpr uint32_t kMostDepth = 1024;
constexpr size_t kMostLine = 1000;

bool IsDigit(int byte) {
    return byte >= '0' && byte <= '9';
}

bool ReadSide(ByteInput& input, uint32_t& side) {
    SkipNetpbmSpace(input);
    const int64_t number = ReadNetpbmNumber(input);
    side = number > 0 ? static_cast<uint32_t>(number) : 0;
    return number > 0;
}

// A line without its end; longer ones are cut.
std::string ReadLine(ByteInput& input) {
    std::string line;
    for (int byte = input.Byte(); byte >= 0 && byte != '\n'; byte = input.Byte()) {
        if (line.size() < kMostLine) line += static_cast<char>(byte);
    }
    return line;
}

bool ReadPam(ByteInput& input, NetpbmHeader& header) {
    std::string type;
    bool isEnded = false;
    while (!isEnded) {
        if (input.Peek() < 0) return false;
        const std::string line = ReadLine(input);
        const size_t start = line.find_first_not_of(" \t\r");
        if (start == std::string::npos || line[start] == '#') continue;
        const size_t end = std::min(line.find_first_of(" \t\r", start), line.size());
        const std::string_view name = std::string_view(line).substr(start, end - start);
        const std::string value = line.substr(end);
        const unsigned long long number = std::strtoull(value.c_str(), nullptr, 10);
        const auto size = static_cast<uint32_t>(number <= kMostNumber ? number : 0);
        if (name == "ENDHDR") isEnded = true;
        if (name == "WIDTH") header.width = size;
        if (name == "HEIGHT") header.height = size;
        if (name == "DEPTH") header.depth = size;
        if (name == "MAXVAL") header.most = size;
        if (name == "TUPLTYPE") type += value;
    }
    const bool isNamed = type.find_first_not_of(" \t\r") != std::string::npos;
    header.areInks = type.find("CMYK") != std::string::npos && header.depth >= 4;
    header.hasAlpha = type.find("_ALPHA") != std::string::npos ||
                      (!isNamed && (header.depth == 2 || header.depth == 4));
    const uint32_t needed = header.areInks ? 5 : 2;
    if (header.hasAlpha && header.depth < needed) header.hasAlpha = false;
    return header.depth > 0 && header.depth <= kMostDepth;
}

bool ReadFloatHead(ByteInput& input, NetpbmHeader& header) {
    header.depth = header.kind == 'F' ? 3 : 1;
    SkipNetpbmSpace(input);
    std::string text;
    while (!IsNetpbmSpace(input.Peek()) && text.size() < kMostLine) {
        const int byte = input.Byte();
        if (byte < 0) return false;
        text += static_cast<char>(byte);
    }
    header.scale = std::strtod(text.c_str(), nullptr);
    return std::isfinite(header.scale) && header.scale != 0;
}

}  // namespace

bool IsNetpbmSpace(int byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

void SkipNetpbmSpace(ByteInput& input) {
    for (int byte = input.Peek(); IsNetpbmSpace(byte) || byte == '#'; byte = input.Peek()) {
        const bool isComment = byte == '#';
        input.Byte();
        while (isComment && input.Peek() >= 0 && input.Peek() != '\n' && input.Peek() != '\r')
            input.Byte();
    }
}

int64_t ReadNetpbmNumber(ByteInput& input) {
    if (!IsDigit(input.Peek())) return -1;
    int64_t number = 0;
    while (IsDigit(input.Peek())) {
        number = number * 10 + (input.Byte() - '0');
        if (number > kMostNumber) return -1;
    }
    return number;
}

std::optional<NetpbmHeader> ReadNetpbmHeader(ByteInput& input) {
    NetpbmHeader header;
    if (input.Byte() != 'P') return std::nullopt;
    header.kind = static_cast<char>(input.Byte());
    if (header.kind == '7') {
        if (!ReadPam(input, header)) return std::nullopt;
    } else if (!ReadSide(input, header.width) || !ReadSide(input, header.height)) {
        return std::nullopt;
    } else if (header.IsFloat()) {
        if (!ReadFloatHead(input, header)) return std::nullopt;
    } else if (!header.IsBitmap()) {
        header.depth = header.kind == '3' || header.kind == '6' ? 3 : 1;
        if (!ReadSide(input, header.most)) return std::nullopt;
    }
    if (header.width == 0 || header.height == 0 || header.most == 0 || header.most > kMostValue) {
        return std::nullopt;
    }
    // One white space, whatever follows.
    if (header.kind != '7' && !header.IsPlain()) {
        if (header.IsBitmap() || header.kind == '5' || header.kind == '6') {
            // A comment may stand right behind the last number.
            while (input.Peek() == '#') {
                while (input.Peek() >= 0 && input.Peek() != '\n')
                    input.Byte();
            }
        }
        const int space = input.Byte();
        // Some programs of Windows end the line with two.
        if (header.IsFloat() && space == '\r' && input.Peek() == '\n') input.Byte();
    }
    header.pixelOffset = input.Position();
    return header;
}

}  // namespace tessary::misc
