#include "plugins/axtessarc/name_encoding.h"

#include <algorithm>
#include <vector>

namespace tessary::unpack {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& text, uint32_t code) {
    const auto append = [&text](uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
        return;
    }
    if (code < 0x800) {
        append(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            append(0xE0 | code >> 12);
        } else {
            append(0xF0 | code >> 18);
            append(0x80 | (code >> 12 & 0x3F));
        }
        append(0x80 | (code >> 6 & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

// The length of the UTF-8 sequence at the start of `text`; 0 when there is no valid one.
size_t SequenceLength(std::string_view text) {
    const auto lead = static_cast<uint8_t>(text[0]);
    if (lead < 0x80) return 1;
    const size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i) {
        if ((static_cast<uint8_t>(text[i]) & 0xC0) != 0x80) return 0;
    }
    const auto second = static_cast<uint8_t>(text[1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool outside = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
    return overlong || outside ? 0 : length;
}

// Half-width katakana of Shift-JIS.
bool IsKatakana(char byte) {
    const auto value = static_cast<uint8_t>(byte);
    return value >= 0xA1 && value <= 0xDF;
}

}  // namespace

bool LooksLikeUtf8(std::string_view name) {
    bool certain = false;
    size_t pairs = 0;  // that could be two katakana each, one behind the other
    size_t longestRun = 0;
    for (size_t at = 0; at < name.size();) {
        const size_t length = SequenceLength(name.substr(at));
        if (length == 0) return false;
        if (length == 2 && IsKatakana(name[at]) && IsKatakana(name[at + 1])) {
            longestRun = std::max(longestRun, ++pairs);
        } else {
            certain = certain || length > 1;
            pairs = 0;
        }
        at += length;
    }
    // A single such pair is an accented letter of a western name far more often.
    return certain || longestRun == 1;
}

void RestoreSecondHalves(std::string& name) {
    for (size_t i = 0; i + 1 < name.size(); ++i) {
        const auto byte = static_cast<uint8_t>(name[i]);
        if (!((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC))) continue;
        ++i;
        if (name[i] == '/') name[i] = '\\';
    }
}

std::string Utf8FromUtf16(std::span<const uint16_t> units) {
    const auto isHigh = [](uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
    const auto isLow = [](uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
    std::string text;
    for (size_t i = 0; i < units.size(); ++i) {
        uint32_t code = units[i];
        if (isHigh(code) && i + 1 < units.size() && isLow(units[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (units[++i] - 0xDC00u);
        } else if (isHigh(code) || isLow(code)) {
            code = kReplacement;
        }
        AppendUtf8(text, code);
    }
    return text;
}

std::string Utf8FromWide(const wchar_t* text) {
    std::vector<uint16_t> units;
    for (; *text != L'\0'; ++text) {
        const auto code = static_cast<uint32_t>(*text);
        if (code < 0x10000) {
            units.push_back(static_cast<uint16_t>(code));
        } else {
            units.push_back(static_cast<uint16_t>(0xD7C0 + (code >> 10)));
            units.push_back(static_cast<uint16_t>(0xDC00 | (code & 0x3FF)));
        }
    }
    return Utf8FromUtf16(units);
}

}  // namespace tessary::unpack
