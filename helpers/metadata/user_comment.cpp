#include "helpers/metadata/user_comment.h"

#include <algorithm>
#include <string_view>

#include "helpers/metadata/metadata_field.h"

namespace tessary::metadata {
namespace {

constexpr size_t kCodeSize = 8;
constexpr char kEscape = '\x1B';
constexpr char kNoCharacter = '?';

std::u16string UnitsOf(std::span<const uint8_t> bytes, bool isBigEndian) {
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned first = bytes[i], second = bytes[i + 1];
        units += static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return units;
}

// How many units are of the blocks that most texts here are written in.
ptrdiff_t CountOfUsual(std::u16string_view units) {
    return std::ranges::count_if(units, [](char16_t unit) {
        return (unit >= u' ' && unit < 0x180) || (unit >= 0x3000 && unit < 0x3100) ||
               (unit >= 0x4E00 && unit < 0xA000) || (unit >= 0xFF00 && unit < 0xFFF0);
    });
}

// Not everybody who writes it knows the byte order that it is to have.
std::string UnicodeText(std::span<const uint8_t> bytes, bool isBigEndian) {
    std::u16string units = UnitsOf(bytes, isBigEndian);
    std::u16string others = UnitsOf(bytes, !isBigEndian);
    constexpr char16_t kMark = 0xFEFF;
    if (others.starts_with(kMark) || CountOfUsual(others) > CountOfUsual(units)) {
        units = std::move(others);
    }
    if (units.starts_with(kMark)) units.erase(0, 1);
    return Utf8Of(units);
}

// The same character of JIS X 0208 in Shift_JIS.
void AppendShifted(std::string& text, unsigned row, unsigned cell) {
    if (row < 0x21 || row > 0x7E || cell < 0x21 || cell > 0x7E) {
        text += kNoCharacter;
        return;
    }
    const unsigned lead = (row + 1) / 2 + (row < 0x5F ? 0x70 : 0xB0);
    const unsigned trail = row % 2 == 0 ? cell + 0x7E : cell + (cell < 0x60 ? 0x1F : 0x20);
    text += {static_cast<char>(lead), static_cast<char>(trail)};
}

// Shift_JIS of ISO-2022-JP. What has no escape sequence stays as it is.
std::string ShiftedText(std::string_view jis) {
    enum class Set { kAscii, kKatakana, kTwoBytes, kUnknown } set = Set::kAscii;
    std::string text;
    while (!jis.empty()) {
        const auto isNext = [&](std::string_view begin) { return jis.starts_with(begin); };
        if (jis[0] == kEscape && jis.size() >= 3) {
            size_t length = 3;
            if (isNext("\x1B(B") || isNext("\x1B(J")) {
                set = Set::kAscii;
            } else if (isNext("\x1B(I")) {
                set = Set::kKatakana;
            } else if (isNext("\x1B$B") || isNext("\x1B$@")) {
                set = Set::kTwoBytes;
            } else if (isNext("\x1B$") || isNext("\x1B(")) {
                length = isNext("\x1B$(") ? 4 : 3;
                set = Set::kUnknown;
            } else if (!isNext("\x1B&@")) {
                length = 1;  // the start of nothing that JIS knows
            }
            jis.remove_prefix(std::min(length, jis.size()));
            continue;
        }
        const bool isTwo = set == Set::kTwoBytes || set == Set::kUnknown;
        const auto first = static_cast<unsigned char>(jis[0]);
        if (isTwo && first > ' ' && jis.size() >= 2) {
            set == Set::kUnknown ? static_cast<void>(text += kNoCharacter)
                                 : AppendShifted(text, first, static_cast<unsigned char>(jis[1]));
            jis.remove_prefix(2);
            continue;
        }
        const bool isKana = set == Set::kKatakana && first > ' ' && first < 0x60;
        text += isKana ? static_cast<char>(first | 0x80) : jis[0];
        jis.remove_prefix(1);
    }
    return text;
}

}  // namespace

std::string UnitsText(std::span<const uint8_t> bytes, bool isBigEndian) {
    return Utf8Of(UnitsOf(bytes, isBigEndian));
}

std::string CommentText(std::span<const uint8_t> comment, bool isBigEndian) {
    std::string_view text(reinterpret_cast<const char*>(comment.data()), comment.size());
    if (text.starts_with("UNICODE") && text.size() > kCodeSize) {
        return UnicodeText(comment.subspan(kCodeSize), isBigEndian);
    }
    // Some have forgotten the code.
    const bool hasCode = text.starts_with("ASCII") || text.starts_with("JIS") ||
                         text.starts_with('\0') || text.starts_with(std::string(kCodeSize, ' '));
    if (hasCode) text.remove_prefix(std::min(kCodeSize, text.size()));
    return ShiftedText(text);
}

}  // namespace tessary::metadata
