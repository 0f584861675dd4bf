#include "plugins/iftessmisc/xpm_text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "plugins/iftessmisc/x11_colors.h"

namespace tessary::misc {
namespace {

// Kinds of screens, the best one first; "s" is a name for programs.
constexpr std::array<std::string_view, 5> kKinds{"c", "g", "g4", "m", "s"};
constexpr size_t kUsableKinds = 4;

std::string Lower(std::string_view text) {
    std::string lower;
    for (const char letter : text)
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return lower;
}

int HexDigit(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    const int low = std::tolower(static_cast<unsigned char>(letter));
    return low >= 'a' && low <= 'f' ? low - 'a' + 10 : -1;
}

// One to four digits of each colour, of which the first two count.
std::optional<XpmColor> HexColor(std::string_view digits) {
    const size_t each = digits.size() / 3;
    if (digits.size() % 3 != 0 || each < 1 || each > 4) return std::nullopt;
    std::array<uint8_t, 3> levels{};
    for (size_t i = 0; i < 3; ++i) {
        const int high = HexDigit(digits[i * each]);
        const int low = each == 1 ? high : HexDigit(digits[i * each + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        levels[i] = static_cast<uint8_t>(high << 4 | low);
    }
    return XpmColor{{levels[2], levels[1], levels[0], 0}, 0xFF};
}

std::optional<XpmColor> ColorOf(std::string_view value) {
    if (value.starts_with('#')) return HexColor(value.substr(1));
    const std::string name = Lower(value);
    if (name == "none" || name == "transparent") return XpmColor{{0, 0, 0, 0}, 0};
    const auto rgb = X11Color(value);
    if (!rgb) return std::nullopt;
    return XpmColor{{static_cast<uint8_t>(*rgb), static_cast<uint8_t>(*rgb >> 8),
                     static_cast<uint8_t>(*rgb >> 16), 0},
                    0xFF};
}

std::vector<std::string_view> WordsOf(std::string_view text) {
    constexpr std::string_view kSpaces = " \t\r";
    std::vector<std::string_view> words;
    for (size_t at = text.find_first_not_of(kSpaces); at != std::string_view::npos;
         at = text.find_first_not_of(kSpaces, at)) {
        const size_t end = std::min(text.find_first_of(kSpaces, at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

}  // namespace

void XpmText::SkipComment() {
    for (int last = 0, byte = input_.Byte(); byte >= 0 && (last != '*' || byte != '/');
         byte = input_.Byte())
        last = byte;
}

bool XpmText::NextLine(std::string& text, size_t most) {
    for (;;) {
        text.clear();
        if (input_.Peek() < 0) return false;
        for (int byte = input_.Byte(); byte >= 0 && byte != '\n'; byte = input_.Byte()) {
            if (text.size() < most && byte != '\r') text += static_cast<char>(byte);
        }
        if (!text.empty() && text[0] != '!') return true;
    }
}

bool XpmText::Next(std::string& text, size_t most) {
    if (isPlain_) return NextLine(text, most);
    text.clear();
    for (int byte = input_.Byte(); byte != '"'; byte = input_.Byte()) {
        if (byte < 0) return false;
        if (byte != '/' || input_.Peek() != '*') continue;
        input_.Byte();
        SkipComment();
    }
    for (int byte = input_.Byte(); byte >= 0 && byte != '"'; byte = input_.Byte()) {
        if (byte == '\\') byte = input_.Byte();
        if (text.size() < most && byte >= 0) text += static_cast<char>(byte);
    }
    return true;
}

std::optional<XpmColor> ReadXpmColor(std::string_view text) {
    // A value goes on to the next kind: names may have several words.
    std::array<std::string, kKinds.size()> values;
    size_t kind = kKinds.size();
    for (const std::string_view word : WordsOf(text)) {
        const auto found = std::ranges::find(kKinds, word);
        const bool isKind =
            found != kKinds.end() && (kind == kKinds.size() || !values[kind].empty());
        if (isKind) {
            kind = static_cast<size_t>(found - kKinds.begin());
        } else if (kind != kKinds.size()) {
            if (!values[kind].empty()) values[kind] += ' ';
            values[kind] += word;
        }
    }
    for (size_t i = 0; i < kUsableKinds; ++i) {
        if (values[i].empty()) continue;
        if (const auto color = ColorOf(values[i])) return color;
    }
    return std::nullopt;
}

}  // namespace tessary::misc
