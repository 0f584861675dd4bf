#include "plugins/iftesswic/dds_file.h"

#include <algorithm>
#include <array>
#include <string>

#include "plugins/common/picture_target.h"
#include "plugins/iftesswic/number_reader.h"

namespace tessary::wic {
namespace {

// Places in the file, behind the four bytes of its signature.
constexpr uint64_t kFlags = 8;
constexpr uint64_t kHeight = 12;
constexpr uint64_t kWidth = 16;
constexpr uint64_t kDepth = 24;  // and the count of smaller copies behind it
constexpr uint64_t kFormatFlags = 80;
constexpr uint64_t kFourCC = 84;
constexpr uint64_t kBitCount = 88;
constexpr uint64_t kPixelFormatEnd = 108;  // masks that a named kind has not
constexpr uint64_t kCaps2 = 112;
constexpr uint64_t kHeaderEnd = 128;
constexpr uint64_t kDxgiFormat = 128;
constexpr uint64_t kDimension = 132;  // then what it is used for, the array's size
constexpr uint64_t kLongHeaderEnd = 148;

constexpr uint32_t kHasFourCC = 4;
constexpr uint32_t kSeveralPictures = 0x820000;  // in the flags: has smaller copies, has a depth

constexpr uint32_t Name(char a, char b, char c, char d) {
    return static_cast<uint32_t>(a | b << 8 | c << 16 | d << 24);
}

struct Kind {
    uint32_t name;    // FourCC or DXGI number
    uint32_t format;  // the DXGI number that is decoded right
    uint32_t bits;    // of a pixel; 0: in blocks of 4 x 4 pixels
    uint32_t blockBytes;
};

constexpr std::array kNames{
    Kind{Name('D', 'X', 'T', '1'), 0, 0, 8},  Kind{Name('D', 'X', 'T', '2'), 0, 0, 16},
    Kind{Name('D', 'X', 'T', '3'), 0, 0, 16}, Kind{Name('D', 'X', 'T', '4'), 0, 0, 16},
    Kind{Name('D', 'X', 'T', '5'), 0, 0, 16},
};
// BC1 to BC3, and plain pixels; of pairs the second is the same in sRGB.
constexpr std::array kFormats{
    Kind{71, 71, 0, 8},  Kind{72, 71, 0, 8},  Kind{74, 74, 0, 16}, Kind{75, 74, 0, 16},
    Kind{77, 77, 0, 16}, Kind{78, 77, 0, 16}, Kind{11, 11, 64, 0}, Kind{28, 28, 32, 0},
    Kind{29, 28, 32, 0}, Kind{61, 61, 8, 0},  Kind{85, 85, 16, 0}, Kind{86, 86, 16, 0},
    Kind{87, 87, 32, 0}, Kind{91, 87, 32, 0}, Kind{88, 88, 32, 0}, Kind{93, 88, 32, 0},
};

const Kind* Find(std::span<const Kind> kinds, uint32_t name) {
    const auto found = std::ranges::find(kinds, name, &Kind::name);
    return found == kinds.end() ? nullptr : &*found;
}

uint64_t SizeOf(const Kind& kind, uint64_t width, uint64_t height) {
    if (kind.bits != 0) return (width * kind.bits + 7) / 8 * height;
    return (width + 3) / 4 * ((height + 3) / 4) * kind.blockBytes;
}

std::vector<uint8_t> Bytes(uint32_t number) {
    return {static_cast<uint8_t>(number), static_cast<uint8_t>(number >> 8),
            static_cast<uint8_t>(number >> 16), static_cast<uint8_t>(number >> 24)};
}

}  // namespace

Inspection InspectDds(dib::ByteSource& file, PatchedSource& patched) {
    NumberReader header(file);
    const auto number = [&](uint64_t at) { return header.Long(at).value_or(0); };
    const uint64_t width = number(kWidth), height = number(kHeight);
    if (width == 0 || height == 0 || width > 0xFFFF || height > 0xFFFF) {
        return Broken(L"DDSの見出しの値が正しくありません");
    }
    uint64_t start = kHeaderEnd;
    Kind kind{0, 0, number(kBitCount), 0};
    if ((number(kFormatFlags) & kHasFourCC) != 0) {
        const uint32_t name = number(kFourCC);
        const bool isLong = name == Name('D', 'X', '1', '0');
        const Kind* known = isLong ? Find(kFormats, number(kDxgiFormat)) : Find(kNames, name);
        if (known == nullptr) return NotRead(L"この種類のDDSには対応していません");
        kind = *known;
        patched.Patch(kBitCount, std::vector<uint8_t>(kPixelFormatEnd - kBitCount));
        if (isLong) {
            start = kLongHeaderEnd;
            patched.Patch(kDxgiFormat, Bytes(kind.format));
            patched.Patch(kDimension, Bytes(3));  // a flat picture, for no special use, and one
            patched.Patch(kDimension + 4, Bytes(0));
            patched.Patch(kDimension + 8, Bytes(1));
        }
    } else if (kind.bits == 0 || kind.bits > 32) {
        return NotRead(L"この種類のDDSには対応していません");
    }
    patched.Patch(kFlags, Bytes(number(kFlags) & ~kSeveralPictures));
    patched.Patch(kDepth, Bytes(0));
    patched.Patch(kDepth + 4, Bytes(0));
    patched.Patch(kCaps2, Bytes(0));
    const uint64_t end = start + SizeOf(kind, width, height);
    if (file.Size() <= start || !codec::IsPlausibleSize(end, file.Size())) {
        return Broken(L"DDSデータが途中で切れています");
    }
    if (end <= file.Size()) return {};
    patched.ExtendTo(end);
    return Damaged(L"DDSデータが途中で切れています");
}

}  // namespace tessary::wic
