#include "helpers/metadata/metadata_field.h"

#include <algorithm>
#include <utility>

namespace tessary::metadata {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

bool IsBlank(char byte) {
    return static_cast<unsigned char>(byte) <= ' ';
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool IsLead(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0xC0;
}

void AppendUtf8(std::string& text, uint32_t point) {
    const auto put = [&](uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto putMore = [&](int shift) { put(0x80 | (point >> shift & 0x3F)); };
    if (point < 0x80) return put(point);
    if (point < 0x800) {
        put(0xC0 | point >> 6);
    } else {
        if (point < 0x10000) {
            put(0xE0 | point >> 12);
        } else {
            put(0xF0 | point >> 18);
            putMore(12);
        }
        putMore(6);
    }
    putMore(0);
}

// Without what stands behind a zero, blanks at the ends, and half of a character at a cut.
std::string Trimmed(std::string_view text) {
    text = text.substr(0, std::min(text.find('\0'), kLongestText));
    if (text.size() == kLongestText) {
        while (!text.empty() && IsContinuation(text.back()))
            text.remove_suffix(1);
        if (!text.empty() && IsLead(text.back())) text.remove_suffix(1);
    }
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return std::string(text);
}

}  // namespace

void AddField(Fields& fields, FieldKind kind, std::string_view text) {
    Field field{kind, Trimmed(text)};
    if (field.text.empty() || fields.size() >= kMostFields) return;
    if (std::ranges::find(fields, field) == fields.end()) fields.push_back(std::move(field));
}

std::string Utf8Of(std::u16string_view units) {
    std::string text;
    for (size_t i = 0; i < units.size() && units[i] != 0 && text.size() < kLongestText; ++i) {
        const uint32_t unit = units[i];
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        const uint32_t next = isHigh && i + 1 < units.size() ? units[i + 1] : 0;
        if (isHigh && next >= 0xDC00 && next < 0xE000) {
            AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            AppendUtf8(text, unit >= 0xD800 && unit < 0xE000 ? kReplacement : unit);
        }
    }
    return text;
}

}  // namespace tessary::metadata
