#include "plugins/iftessmisc/x11_colors.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace tessary::misc {
namespace {

struct Named {
    std::string_view name;
    uint32_t rgb;
};

// A colour with its four shades: "snow", "snow1" to "snow4".
struct Shaded {
    std::string_view name;
    std::array<uint32_t, 5> rgb;
};

// Both in the order of their names, and "grey" only as "gray".
constexpr std::array kNamed{
    Named{"aliceblue", 0xF0F8FF},
    Named{"beige", 0xF5F5DC},
    Named{"black", 0x000000},
    Named{"blanchedalmond", 0xFFEBCD},
    Named{"blueviolet", 0x8A2BE2},
    Named{"cornflowerblue", 0x6495ED},
    Named{"darkblue", 0x00008B},
    Named{"darkcyan", 0x008B8B},
    Named{"darkgray", 0xA9A9A9},
    Named{"darkgreen", 0x006400},
    Named{"darkkhaki", 0xBDB76B},
    Named{"darkmagenta", 0x8B008B},
    Named{"darkred", 0x8B0000},
    Named{"darksalmon", 0xE9967A},
    Named{"darkslateblue", 0x483D8B},
    Named{"darkturquoise", 0x00CED1},
    Named{"darkviolet", 0x9400D3},
    Named{"debianred", 0xD70751},
    Named{"dimgray", 0x696969},
    Named{"floralwhite", 0xFFFAF0},
    Named{"forestgreen", 0x228B22},
    Named{"gainsboro", 0xDCDCDC},
    Named{"ghostwhite", 0xF8F8FF},
    Named{"gray", 0xBEBEBE},
    Named{"greenyellow", 0xADFF2F},
    Named{"lavender", 0xE6E6FA},
    Named{"lawngreen", 0x7CFC00},
    Named{"lightcoral", 0xF08080},
    Named{"lightgoldenrodyellow", 0xFAFAD2},
    Named{"lightgray", 0xD3D3D3},
    Named{"lightgreen", 0x90EE90},
    Named{"lightseagreen", 0x20B2AA},
    Named{"lightslateblue", 0x8470FF},
    Named{"lightslategray", 0x778899},
    Named{"limegreen", 0x32CD32},
    Named{"linen", 0xFAF0E6},
    Named{"mediumaquamarine", 0x66CDAA},
    Named{"mediumblue", 0x0000CD},
    Named{"mediumseagreen", 0x3CB371},
    Named{"mediumslateblue", 0x7B68EE},
    Named{"mediumspringgreen", 0x00FA9A},
    Named{"mediumturquoise", 0x48D1CC},
    Named{"mediumvioletred", 0xC71585},
    Named{"midnightblue", 0x191970},
    Named{"mintcream", 0xF5FFFA},
    Named{"moccasin", 0xFFE4B5},
    Named{"navy", 0x000080},
    Named{"navyblue", 0x000080},
    Named{"oldlace", 0xFDF5E6},
    Named{"palegoldenrod", 0xEEE8AA},
    Named{"papayawhip", 0xFFEFD5},
    Named{"peru", 0xCD853F},
    Named{"powderblue", 0xB0E0E6},
    Named{"saddlebrown", 0x8B4513},
    Named{"sandybrown", 0xF4A460},
    Named{"violet", 0xEE82EE},
    Named{"white", 0xFFFFFF},
    Named{"whitesmoke", 0xF5F5F5},
    Named{"yellowgreen", 0x9ACD32},
};

constexpr std::array kShaded{
    Shaded{"antiquewhite", {0xFAEBD7, 0xFFEFDB, 0xEEDFCC, 0xCDC0B0, 0x8B8378}},
    Shaded{"aquamarine", {0x7FFFD4, 0x7FFFD4, 0x76EEC6, 0x66CDAA, 0x458B74}},
    Shaded{"azure", {0xF0FFFF, 0xF0FFFF, 0xE0EEEE, 0xC1CDCD, 0x838B8B}},
    Shaded{"bisque", {0xFFE4C4, 0xFFE4C4, 0xEED5B7, 0xCDB79E, 0x8B7D6B}},
    Shaded{"blue", {0x0000FF, 0x0000FF, 0x0000EE, 0x0000CD, 0x00008B}},
    Shaded{"brown", {0xA52A2A, 0xFF4040, 0xEE3B3B, 0xCD3333, 0x8B2323}},
    Shaded{"burlywood", {0xDEB887, 0xFFD39B, 0xEEC591, 0xCDAA7D, 0x8B7355}},
    Shaded{"cadetblue", {0x5F9EA0, 0x98F5FF, 0x8EE5EE, 0x7AC5CD, 0x53868B}},
    Shaded{"chartreuse", {0x7FFF00, 0x7FFF00, 0x76EE00, 0x66CD00, 0x458B00}},
    Shaded{"chocolate", {0xD2691E, 0xFF7F24, 0xEE7621, 0xCD661D, 0x8B4513}},
    Shaded{"coral", {0xFF7F50, 0xFF7256, 0xEE6A50, 0xCD5B45, 0x8B3E2F}},
    Shaded{"cornsilk", {0xFFF8DC, 0xFFF8DC, 0xEEE8CD, 0xCDC8B1, 0x8B8878}},
    Shaded{"cyan", {0x00FFFF, 0x00FFFF, 0x00EEEE, 0x00CDCD, 0x008B8B}},
    Shaded{"darkgoldenrod", {0xB8860B, 0xFFB90F, 0xEEAD0E, 0xCD950C, 0x8B6508}},
    Shaded{"darkolivegreen", {0x556B2F, 0xCAFF70, 0xBCEE68, 0xA2CD5A, 0x6E8B3D}},
    Shaded{"darkorange", {0xFF8C00, 0xFF7F00, 0xEE7600, 0xCD6600, 0x8B4500}},
    Shaded{"darkorchid", {0x9932CC, 0xBF3EFF, 0xB23AEE, 0x9A32CD, 0x68228B}},
    Shaded{"darkseagreen", {0x8FBC8F, 0xC1FFC1, 0xB4EEB4, 0x9BCD9B, 0x698B69}},
    Shaded{"darkslategray", {0x2F4F4F, 0x97FFFF, 0x8DEEEE, 0x79CDCD, 0x528B8B}},
    Shaded{"deeppink", {0xFF1493, 0xFF1493, 0xEE1289, 0xCD1076, 0x8B0A50}},
    Shaded{"deepskyblue", {0x00BFFF, 0x00BFFF, 0x00B2EE, 0x009ACD, 0x00688B}},
    Shaded{"dodgerblue", {0x1E90FF, 0x1E90FF, 0x1C86EE, 0x1874CD, 0x104E8B}},
    Shaded{"firebrick", {0xB22222, 0xFF3030, 0xEE2C2C, 0xCD2626, 0x8B1A1A}},
    Shaded{"gold", {0xFFD700, 0xFFD700, 0xEEC900, 0xCDAD00, 0x8B7500}},
    Shaded{"goldenrod", {0xDAA520, 0xFFC125, 0xEEB422, 0xCD9B1D, 0x8B6914}},
    Shaded{"green", {0x00FF00, 0x00FF00, 0x00EE00, 0x00CD00, 0x008B00}},
    Shaded{"honeydew", {0xF0FFF0, 0xF0FFF0, 0xE0EEE0, 0xC1CDC1, 0x838B83}},
    Shaded{"hotpink", {0xFF69B4, 0xFF6EB4, 0xEE6AA7, 0xCD6090, 0x8B3A62}},
    Shaded{"indianred", {0xCD5C5C, 0xFF6A6A, 0xEE6363, 0xCD5555, 0x8B3A3A}},
    Shaded{"ivory", {0xFFFFF0, 0xFFFFF0, 0xEEEEE0, 0xCDCDC1, 0x8B8B83}},
    Shaded{"khaki", {0xF0E68C, 0xFFF68F, 0xEEE685, 0xCDC673, 0x8B864E}},
    Shaded{"lavenderblush", {0xFFF0F5, 0xFFF0F5, 0xEEE0E5, 0xCDC1C5, 0x8B8386}},
    Shaded{"lemonchiffon", {0xFFFACD, 0xFFFACD, 0xEEE9BF, 0xCDC9A5, 0x8B8970}},
    Shaded{"lightblue", {0xADD8E6, 0xBFEFFF, 0xB2DFEE, 0x9AC0CD, 0x68838B}},
    Shaded{"lightcyan", {0xE0FFFF, 0xE0FFFF, 0xD1EEEE, 0xB4CDCD, 0x7A8B8B}},
    Shaded{"lightgoldenrod", {0xEEDD82, 0xFFEC8B, 0xEEDC82, 0xCDBE70, 0x8B814C}},
    Shaded{"lightpink", {0xFFB6C1, 0xFFAEB9, 0xEEA2AD, 0xCD8C95, 0x8B5F65}},
    Shaded{"lightsalmon", {0xFFA07A, 0xFFA07A, 0xEE9572, 0xCD8162, 0x8B5742}},
    Shaded{"lightskyblue", {0x87CEFA, 0xB0E2FF, 0xA4D3EE, 0x8DB6CD, 0x607B8B}},
    Shaded{"lightsteelblue", {0xB0C4DE, 0xCAE1FF, 0xBCD2EE, 0xA2B5CD, 0x6E7B8B}},
    Shaded{"lightyellow", {0xFFFFE0, 0xFFFFE0, 0xEEEED1, 0xCDCDB4, 0x8B8B7A}},
    Shaded{"magenta", {0xFF00FF, 0xFF00FF, 0xEE00EE, 0xCD00CD, 0x8B008B}},
    Shaded{"maroon", {0xB03060, 0xFF34B3, 0xEE30A7, 0xCD2990, 0x8B1C62}},
    Shaded{"mediumorchid", {0xBA55D3, 0xE066FF, 0xD15FEE, 0xB452CD, 0x7A378B}},
    Shaded{"mediumpurple", {0x9370DB, 0xAB82FF, 0x9F79EE, 0x8968CD, 0x5D478B}},
    Shaded{"mistyrose", {0xFFE4E1, 0xFFE4E1, 0xEED5D2, 0xCDB7B5, 0x8B7D7B}},
    Shaded{"navajowhite", {0xFFDEAD, 0xFFDEAD, 0xEECFA1, 0xCDB38B, 0x8B795E}},
    Shaded{"olivedrab", {0x6B8E23, 0xC0FF3E, 0xB3EE3A, 0x9ACD32, 0x698B22}},
    Shaded{"orange", {0xFFA500, 0xFFA500, 0xEE9A00, 0xCD8500, 0x8B5A00}},
    Shaded{"orangered", {0xFF4500, 0xFF4500, 0xEE4000, 0xCD3700, 0x8B2500}},
    Shaded{"orchid", {0xDA70D6, 0xFF83FA, 0xEE7AE9, 0xCD69C9, 0x8B4789}},
    Shaded{"palegreen", {0x98FB98, 0x9AFF9A, 0x90EE90, 0x7CCD7C, 0x548B54}},
    Shaded{"paleturquoise", {0xAFEEEE, 0xBBFFFF, 0xAEEEEE, 0x96CDCD, 0x668B8B}},
    Shaded{"palevioletred", {0xDB7093, 0xFF82AB, 0xEE799F, 0xCD6889, 0x8B475D}},
    Shaded{"peachpuff", {0xFFDAB9, 0xFFDAB9, 0xEECBAD, 0xCDAF95, 0x8B7765}},
    Shaded{"pink", {0xFFC0CB, 0xFFB5C5, 0xEEA9B8, 0xCD919E, 0x8B636C}},
    Shaded{"plum", {0xDDA0DD, 0xFFBBFF, 0xEEAEEE, 0xCD96CD, 0x8B668B}},
    Shaded{"purple", {0xA020F0, 0x9B30FF, 0x912CEE, 0x7D26CD, 0x551A8B}},
    Shaded{"red", {0xFF0000, 0xFF0000, 0xEE0000, 0xCD0000, 0x8B0000}},
    Shaded{"rosybrown", {0xBC8F8F, 0xFFC1C1, 0xEEB4B4, 0xCD9B9B, 0x8B6969}},
    Shaded{"royalblue", {0x4169E1, 0x4876FF, 0x436EEE, 0x3A5FCD, 0x27408B}},
    Shaded{"salmon", {0xFA8072, 0xFF8C69, 0xEE8262, 0xCD7054, 0x8B4C39}},
    Shaded{"seagreen", {0x2E8B57, 0x54FF9F, 0x4EEE94, 0x43CD80, 0x2E8B57}},
    Shaded{"seashell", {0xFFF5EE, 0xFFF5EE, 0xEEE5DE, 0xCDC5BF, 0x8B8682}},
    Shaded{"sienna", {0xA0522D, 0xFF8247, 0xEE7942, 0xCD6839, 0x8B4726}},
    Shaded{"skyblue", {0x87CEEB, 0x87CEFF, 0x7EC0EE, 0x6CA6CD, 0x4A708B}},
    Shaded{"slateblue", {0x6A5ACD, 0x836FFF, 0x7A67EE, 0x6959CD, 0x473C8B}},
    Shaded{"slategray", {0x708090, 0xC6E2FF, 0xB9D3EE, 0x9FB6CD, 0x6C7B8B}},
    Shaded{"snow", {0xFFFAFA, 0xFFFAFA, 0xEEE9E9, 0xCDC9C9, 0x8B8989}},
    Shaded{"springgreen", {0x00FF7F, 0x00FF7F, 0x00EE76, 0x00CD66, 0x008B45}},
    Shaded{"steelblue", {0x4682B4, 0x63B8FF, 0x5CACEE, 0x4F94CD, 0x36648B}},
    Shaded{"tan", {0xD2B48C, 0xFFA54F, 0xEE9A49, 0xCD853F, 0x8B5A2B}},
    Shaded{"thistle", {0xD8BFD8, 0xFFE1FF, 0xEED2EE, 0xCDB5CD, 0x8B7B8B}},
    Shaded{"tomato", {0xFF6347, 0xFF6347, 0xEE5C42, 0xCD4F39, 0x8B3626}},
    Shaded{"turquoise", {0x40E0D0, 0x00F5FF, 0x00E5EE, 0x00C5CD, 0x00868B}},
    Shaded{"violetred", {0xD02090, 0xFF3E96, 0xEE3A8C, 0xCD3278, 0x8B2252}},
    Shaded{"wheat", {0xF5DEB3, 0xFFE7BA, 0xEED8AE, 0xCDBA96, 0x8B7E66}},
    Shaded{"yellow", {0xFFFF00, 0xFFFF00, 0xEEEE00, 0xCDCD00, 0x8B8B00}},
};

template <class Table>
auto Find(const Table& table, std::string_view name) {
    const auto at = std::ranges::lower_bound(table, name, {}, &Table::value_type::name);
    return at != table.end() && at->name == name ? &*at : nullptr;
}

// "gray0" to "gray100".
std::optional<uint32_t> Grey(std::string_view name) {
    constexpr std::string_view kStart = "gray";
    if (!name.starts_with(kStart) || name.size() > kStart.size() + 3) return std::nullopt;
    unsigned percent = 0;
    for (const char digit : name.substr(kStart.size())) {
        if (digit < '0' || digit > '9') return std::nullopt;
        percent = percent * 10 + static_cast<unsigned>(digit - '0');
    }
    if (name.size() == kStart.size() || percent > 100) return std::nullopt;
    // Two of them are rounded down.
    const uint32_t level =
        percent == 50 || percent == 90 ? percent * 255 / 100 : (percent * 255 + 50) / 100;
    return level * 0x010101;
}

}  // namespace

std::optional<uint32_t> X11Color(std::string_view given) {
    std::string name;
    for (const char letter : given) {
        if (letter != ' ' && letter != '\t')
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    }
    if (const size_t grey = name.find("grey"); grey != std::string::npos) name[grey + 2] = 'a';
    if (const auto level = Grey(name)) return level;
    if (const Named* named = Find(kNamed, name)) return named->rgb;
    size_t shade = 0;
    if (!name.empty() && name.back() >= '1' && name.back() <= '4') {
        shade = static_cast<size_t>(name.back() - '0');
        name.pop_back();
    }
    const Shaded* const shaded = Find(kShaded, name);
    return shaded == nullptr ? std::nullopt : std::optional(shaded->rgb[shade]);
}

}  // namespace tessary::misc
