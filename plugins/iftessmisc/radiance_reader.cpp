// Radiance HDR: three mantissas and their exponent. Format: the Radiance file formats, "Picture
// File Format".
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/light.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr size_t kMostLine = 2048;
constexpr uint64_t kMostHead = 1u << 20;
constexpr uint32_t kLeastPacked = 8, kMostPacked = 0x7FFF;  // width of rows in four parts
constexpr size_t kPixelBytes = 4;

struct RadianceHeader {
    uint32_t width = 0;   // pixels of a stored row
    uint32_t height = 0;  // stored rows
    uint16_t orientation = 1;
    bool isXyz = false;
    uint64_t pixels = 0;
};

bool ReadLine(ByteInput& input, std::string& line) {
    line.clear();
    if (input.Peek() < 0) return false;
    for (int byte = input.Byte(); byte >= 0 && byte != '\n'; byte = input.Byte()) {
        if (line.size() < kMostLine && byte != '\r') line += static_cast<char>(byte);
    }
    return true;
}

// "-Y 480 +X 640": rows from the top down (y rises upwards), each from the left.
bool ReadSides(const std::string& line, RadianceHeader& header) {
    char firstSign = 0, firstAxis = 0, secondSign = 0, secondAxis = 0;
    long long rows = 0, width = 0;
    if (std::sscanf(line.c_str(), "%c%c %lld %c%c %lld", &firstSign, &firstAxis, &rows, &secondSign,
                    &secondAxis, &width) != 6 ||
        rows <= 0 || width <= 0 || rows > 0x7FFFFFFF || width > 0x7FFFFFFF) {
        return false;
    }
    struct Order {
        std::string_view axes;
        uint16_t orientation;
    };
    constexpr std::array kOrders{Order{"-Y+X", 1}, Order{"-Y-X", 2}, Order{"+Y-X", 3},
                                 Order{"+Y+X", 4}, Order{"+X-Y", 5}, Order{"-X-Y", 6},
                                 Order{"-X+Y", 7}, Order{"+X+Y", 8}};
    const std::array axes{firstSign, firstAxis, secondSign, secondAxis};
    const auto order =
        std::ranges::find(kOrders, std::string_view(axes.data(), axes.size()), &Order::axes);
    if (order == kOrders.end()) return false;
    header.height = static_cast<uint32_t>(rows);
    header.width = static_cast<uint32_t>(width);
    header.orientation = order->orientation;
    return true;
}

// The exposure that a head tells has been done already: it stays.
bool ReadHeader(ByteInput& input, RadianceHeader& header) {
    std::string line;
    do {
        if (!ReadLine(input, line) || input.Position() > kMostHead) return false;
        if (line.starts_with("FORMAT=")) {
            header.isXyz = line.find("xyze") != std::string::npos;
            if (!header.isXyz && line.find("rgbe") == std::string::npos) return false;
        }
    } while (!line.empty());
    if (!ReadLine(input, line) || !ReadSides(line, header)) return false;
    header.pixels = input.Position();
    return true;
}

using Pixel = std::array<uint8_t, kPixelBytes>;

// Rows of pixels as they are before they are packed.
class StoredRows {
  public:
    StoredRows(dib::ByteSource& source, const RadianceHeader& header)
        : input_(source, header.pixels), width_(header.width) {}

    // How many pixels of the next row there are.
    size_t Read(std::vector<Pixel>& row) {
        Pixel start{};
        if (input_.Read(start) != start.size()) return 0;
        const bool isPacked = width_ >= kLeastPacked && width_ <= kMostPacked && start[0] == 2 &&
                              start[1] == 2 &&
                              (start[2] << 8 | start[3]) == static_cast<int>(width_);
        return isPacked ? ReadParts(row) : ReadOld(row, start);
    }

  private:
    // All mantissas of red, then the others: each in runs of its own.
    size_t ReadParts(std::vector<Pixel>& row) {
        row.assign(width_, {});
        for (size_t part = 0; part < kPixelBytes; ++part) {
            for (size_t x = 0; x < width_;) {
                const int head = input_.Byte();
                const auto count = static_cast<size_t>(head > 128 ? head - 128 : head);
                const int value = head > 128 ? input_.Byte() : 0;
                // Without its exponent a pixel is nothing.
                if (head <= 0 || value < 0 || count > width_ - x) {
                    return part == kPixelBytes - 1 ? x : 0;
                }
                for (size_t i = 0; i < count; ++i) {
                    const int byte = head > 128 ? value : input_.Byte();
                    if (byte < 0) return part == kPixelBytes - 1 ? x : 0;
                    row[x++][part] = static_cast<uint8_t>(byte);
                }
            }
        }
        return width_;
    }

    // Pixels, and marks of how often the one before is repeated: each next mark counts 256 times
    // as much.
    size_t ReadOld(std::vector<Pixel>& row, Pixel next) {
        row.clear();
        unsigned shift = 0;
        for (;;) {
            if (next[0] == 1 && next[1] == 1 && next[2] == 1) {
                if (row.empty()) return 0;
                const uint64_t wanted = shift < 32 ? uint64_t{next[3]} << shift : 0;
                const auto count =
                    static_cast<size_t>(std::min<uint64_t>(wanted, width_ - row.size()));
                row.insert(row.end(), count, Pixel(row.back()));
                shift += 8;
            } else {
                row.push_back(next);
                shift = 0;
            }
            if (row.size() == width_ || input_.Read(next) != next.size()) return row.size();
        }
    }

    ByteInput input_;
    size_t width_;
};

// What a mantissa counts for, by exponents; without one there is no light.
const std::array<float, 256>& Units() {
    static const std::array<float, 256> units = [] {
        std::array<float, 256> made{};
        for (int i = 1; i < 256; ++i)
            made[static_cast<size_t>(i)] = std::ldexp(1.0f, i - 136);
        return made;
    }();
    return units;
}

std::array<float, 3> LightOf(const Pixel& pixel, bool isXyz) {
    static const std::array<float, 256>& units = Units();
    const float unit = units[pixel[3]];
    const float x = static_cast<float>(pixel[0]) * unit;
    const float y = static_cast<float>(pixel[1]) * unit;
    const float z = static_cast<float>(pixel[2]) * unit;
    if (!isXyz) return {x, y, z};
    return {3.2404542f * x - 1.5371385f * y - 0.4985314f * z,
            -0.9692660f * x + 1.8760108f * y + 0.0415560f * z,
            0.0556434f * x - 0.2040259f * y + 1.0572252f * z};
}

class RadianceReader final : public PictureReader {
  public:
    RadianceReader(dib::ByteSource& source, const RadianceHeader& header)
        : source_(source), header_(header), rows_(source, header) {
        outline_.width = header.width;
        outline_.height = header.height;
        outline_.orientation = header.orientation;
    }

    bool Prepare(codec::Progress& progress) override {
        StoredRows all(source_, header_);
        float brightest = 0;
        for (uint32_t y = 0; y < header_.height; ++y) {
            if (!progress.Report(0, 1)) return false;
            const size_t count = all.Read(row_);
            for (size_t x = 0; x < count; ++x) {
                const std::array<float, 3> light = LightOf(row_[x], header_.isXyz);
                brightest = std::max({brightest, light[0], light[1], light[2]});
            }
            if (count < header_.width) break;
        }
        curve_ = LightCurve(UsableLight(brightest));
        return true;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        const size_t count = rows_.Read(row_);
        for (size_t x = 0; x < count; ++x)
            curve_.Put(LightOf(row_[x], header_.isXyz), row + 3 * x);
        return static_cast<uint32_t>(count);
    }

  private:
    dib::ByteSource& source_;
    const RadianceHeader header_;
    StoredRows rows_;
    LightCurve curve_{1};
    std::vector<Pixel> row_;
};

bool IsRadiance(std::span<const uint8_t> header) {
    const std::string_view text(reinterpret_cast<const char*>(header.data()), header.size());
    return text.starts_with("#?RADIANCE") || text.starts_with("#?RGBE") ||
           text.starts_with("#?XYZE");
}

Result OpenRadiance(dib::ByteSource& source, codec::Progress&,
                    std::unique_ptr<PictureReader>& reader) {
    ByteInput input(source);
    RadianceHeader header;
    if (!ReadHeader(input, header)) return Result::kBrokenData;
    reader = std::make_unique<RadianceReader>(source, header);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kRadiance{L"HDR", IsRadiance, OpenRadiance};

}  // namespace tessary::misc
