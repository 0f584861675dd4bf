// MAG (MAKI02): pictures of the PC-98 and its contemporaries. Each flag of half a byte stands for
// two bytes of pixels, which are new or copied from a place to the left or above.
#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr std::string_view kSignature = "MAKI02  ";
constexpr int kCommentEnd = 0x1A;
constexpr uint64_t kMostComment = 1u << 16;
constexpr size_t kHeaderSize = 32;
constexpr size_t kUnitBytes = 2;
constexpr size_t kKeptRows = 16;  // the farthest place to copy from

struct MagHeader {
    uint64_t start = 0;          // all places in the file count from here
    bool hasManyColors = false;  // 256; else 16
    bool hasTallPixels = false;  // 200 lines for a screen of 400
    uint32_t left = 0;           // pixels that are stored, but not shown
    uint32_t width = 0, height = 0;
    uint32_t storedRow = 0;                        // bytes
    uint32_t flagBits = 0, flags = 0, pixels = 0;  // places
    std::vector<dib::PaletteEntry> palette = {};

    size_t Colors() const { return hasManyColors ? 256 : 16; }
};

bool ReadHeader(dib::ByteSource& source, MagHeader& header) {
    ByteInput input(source, kSignature.size());
    for (int byte = input.Byte(); byte != kCommentEnd; byte = input.Byte()) {
        if (byte < 0 || input.Position() > kMostComment) return false;
    }
    header.start = input.Position();
    std::array<uint8_t, kHeaderSize> bytes{};
    if (input.Read(bytes) != bytes.size()) return false;
    const uint8_t screen = bytes[3];
    header.hasManyColors = (screen & 0x80) != 0;
    header.hasTallPixels = (screen & 1) != 0;
    const uint32_t left = Little16(&bytes[4]), top = Little16(&bytes[6]);
    const uint32_t right = Little16(&bytes[8]), bottom = Little16(&bytes[10]);
    if (left > right || top > bottom) return false;
    // Rows begin and end at four bytes.
    const uint32_t edge = header.hasManyColors ? 3 : 7;
    header.left = left & edge;
    header.width = right - left + 1;
    header.height = bottom - top + 1;
    const uint32_t stored = (right | edge) - (left & ~edge) + 1;
    header.storedRow = header.hasManyColors ? stored : stored / 2;
    header.flagBits = Little32(&bytes[12]);
    header.flags = Little32(&bytes[16]);
    header.pixels = Little32(&bytes[24]);
    // Green, red, blue.
    std::vector<uint8_t> colors(header.Colors() * 3);
    if (input.Read(colors) != colors.size()) return false;
    // Machines of 16 levels may leave the low half clear.
    const bool areHalves = !header.hasManyColors && std::ranges::all_of(colors, [](uint8_t each) {
        return (each & 0xF) == 0;
    });
    if (areHalves) {
        for (uint8_t& each : colors)
            each = static_cast<uint8_t>(each | each >> 4);
    }
    for (size_t i = 0; i < colors.size(); i += 3)
        header.palette.push_back({colors[i + 2], colors[i], colors[i + 1], 0});
    return true;
}

class MagReader final : public PictureReader {
  public:
    MagReader(dib::ByteSource& source, MagHeader header)
        : header_(std::move(header)),
          bits_(source, header_.start + header_.flagBits),
          flagBytes_(source, header_.start + header_.flags),
          pixels_(source, header_.start + header_.pixels),
          flags_(header_.storedRow / 4) {
        outline_.width = header_.width;
        outline_.height = header_.height * (header_.hasTallPixels ? 2 : 1);
        outline_.pixels = Pixels::kIndexed;
        outline_.tableBits = header_.hasManyColors ? 8 : 4;
        outline_.palette = header_.palette;
        for (std::vector<uint8_t>& row : rows_)
            row.resize(header_.storedRow);
    }

    uint32_t ReadRow(uint32_t y, uint8_t* row) override {
        const bool isAgain = header_.hasTallPixels && y % 2 == 1;
        if (!isAgain) there_ = DecodeRow(header_.hasTallPixels ? y / 2 : y);
        const std::vector<uint8_t>& stored =
            rows_[(header_.hasTallPixels ? y / 2 : y) % rows_.size()];
        const size_t perByte = header_.hasManyColors ? 1 : 2;
        const size_t pixels = there_ * perByte;
        const size_t count =
            std::min<size_t>(header_.width, pixels - std::min<size_t>(pixels, header_.left));
        for (size_t x = 0; x < count; ++x) {
            const size_t at = x + header_.left;
            row[x] = header_.hasManyColors
                         ? stored[at]
                         : static_cast<uint8_t>(stored[at / 2] >> (at % 2 == 0 ? 4 : 0) & 0xF);
        }
        return static_cast<uint32_t>(count);
    }

  private:
    // Flags are told by what is different from those of the row above.
    bool ReadFlags() {
        for (uint8_t& each : flags_) {
            if (mask_ == 0) {
                const int byte = bits_.Byte();
                if (byte < 0) return false;
                bitByte_ = static_cast<unsigned>(byte);
                mask_ = 0x80;
            }
            if ((bitByte_ & mask_) != 0) {
                const int change = flagBytes_.Byte();
                if (change < 0) return false;
                each = static_cast<uint8_t>(each ^ change);
            }
            mask_ >>= 1;
        }
        return true;
    }

    // How many bytes of the row there are.
    size_t DecodeRow(uint32_t y) {
        struct Place {
            uint8_t left, up;
        };
        constexpr std::array<Place, 16> kPlaces{{{0, 0},
                                                 {1, 0},
                                                 {2, 0},
                                                 {4, 0},
                                                 {0, 1},
                                                 {1, 1},
                                                 {0, 2},
                                                 {1, 2},
                                                 {2, 2},
                                                 {0, 4},
                                                 {1, 4},
                                                 {2, 4},
                                                 {0, 8},
                                                 {1, 8},
                                                 {2, 8},
                                                 {0, 16}}};
        std::vector<uint8_t>& row = rows_[y % rows_.size()];
        if (!ReadFlags()) return 0;
        for (size_t at = 0; at < row.size(); at += kUnitBytes) {
            const unsigned flag = flags_[at / 4] >> (at % 4 == 0 ? 4 : 0) & 0xF;
            if (flag == 0) {
                if (pixels_.Read({&row[at], kUnitBytes}) != kUnitBytes) return at;
                continue;
            }
            const Place place = kPlaces[flag];
            const size_t left = place.left * kUnitBytes;
            if (left > at || place.up > y) {
                isDamaged_ = true;
                row[at] = row[at + 1] = 0;
                continue;
            }
            const std::vector<uint8_t>& from = rows_[(y - place.up) % rows_.size()];
            std::memcpy(&row[at], &from[at - left], kUnitBytes);
        }
        return row.size();
    }

    const MagHeader header_;
    ByteInput bits_;
    ByteInput flagBytes_;
    ByteInput pixels_;
    unsigned bitByte_ = 0;
    unsigned mask_ = 0;
    std::vector<uint8_t> flags_;
    std::array<std::vector<uint8_t>, kKeptRows + 1> rows_;  // row i in place i modulo their number
    size_t there_ = 0;  // bytes of the row that was decoded last
};

bool IsMag(std::span<const uint8_t> header) {
    return header.size() >= kSignature.size() &&
           std::memcmp(header.data(), kSignature.data(), kSignature.size()) == 0;
}

Result OpenMag(dib::ByteSource& source, codec::Progress&, std::unique_ptr<PictureReader>& reader) {
    MagHeader header;
    if (!ReadHeader(source, header)) return Result::kBrokenData;
    reader = std::make_unique<MagReader>(source, std::move(header));
    return Result::kSuccess;
}

}  // namespace

constinit const Format kMag{L"MAG", IsMag, OpenMag};

}  // namespace tessary::misc
