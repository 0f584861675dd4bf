// XPM: pictures of icons as parts of C programs.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>

#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/xpm_text.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr uint32_t kMostCharacters = 16;  // of a pixel
constexpr size_t kMostLine = 4096;        // of all strings but the rows

struct XpmHeader {
    uint32_t width = 0, height = 0;
    uint32_t colors = 0;
    uint32_t characters = 0;
};

bool ReadHeader(XpmText& text, XpmHeader& header) {
    std::string line;
    if (!text.Next(line, kMostLine)) return false;
    const char* at = line.c_str();
    for (uint32_t* const field :
         {&header.width, &header.height, &header.colors, &header.characters}) {
        char* end = nullptr;
        const long long number = std::strtoll(at, &end, 10);
        if (end == at || number <= 0 || number > 0x7FFFFFFF) return false;
        *field = static_cast<uint32_t>(number);
        at = end;
    }
    return header.characters <= kMostCharacters;
}

// The colours by their characters.
class Table {
  public:
    explicit Table(uint32_t characters) : characters_(characters) {
        if (characters <= 2) direct_.assign(characters == 1 ? 1u << 8 : 1u << 16, -1);
    }
    // The first one of the same characters counts.
    void Add(const char* characters, int32_t index) {
        if (direct_.empty()) {
            others_.emplace(std::string(characters, characters_), index);
        } else if (int32_t& place = direct_[PlaceOf(characters)]; place < 0) {
            place = index;
        }
    }
    // -1 for none.
    int32_t Find(const char* characters) {
        if (!direct_.empty()) return direct_[PlaceOf(characters)];
        key_.assign(characters, characters_);
        const auto found = others_.find(key_);
        return found == others_.end() ? -1 : found->second;
    }

  private:
    size_t PlaceOf(const char* characters) const {
        const auto first = static_cast<uint8_t>(characters[0]);
        return characters_ == 1 ? first : first * 256u + static_cast<uint8_t>(characters[1]);
    }

    uint32_t characters_;
    std::vector<int32_t> direct_;
    std::unordered_map<std::string, int32_t> others_;
    std::string key_;
};

class XpmReader final : public PictureReader {
  public:
    XpmReader(XpmText text, const XpmHeader& header)
        : text_(std::move(text)), header_(header), table_(header.characters) {
        outline_.width = header.width;
        outline_.height = header.height;
    }

    bool ReadColors() {
        std::string line;
        bool isClear = false;
        for (uint32_t i = 0; i < header_.colors; ++i) {
            if (!text_.Next(line, kMostLine) || line.size() < header_.characters) return false;
            const auto color = ReadXpmColor(std::string_view(line).substr(header_.characters));
            isDamaged_ = isDamaged_ || !color;
            colors_.push_back(color.value_or(XpmColor{}));
            isClear = isClear || colors_.back().alpha == 0;
            table_.Add(line.data(), static_cast<int32_t>(i));
        }
        if (header_.colors > 256) {
            outline_.pixels = isClear ? Pixels::kBgra : Pixels::kBgr;
            return true;
        }
        outline_.pixels = Pixels::kIndexed;
        outline_.tableBits = header_.colors <= 2 ? 1 : header_.colors <= 16 ? 4 : 8;
        for (const XpmColor& color : colors_) {
            outline_.palette.push_back(color.color);
            if (isClear) outline_.paletteAlpha.push_back(color.alpha);
        }
        return true;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        const uint64_t rowSize = uint64_t{header_.width} * header_.characters;
        if (rowSize > SIZE_MAX || !text_.Next(line_, static_cast<size_t>(rowSize))) return 0;
        const auto count = static_cast<uint32_t>(
            std::min<size_t>(header_.width, line_.size() / header_.characters));
        const size_t bytes = BytesOf(outline_.pixels);
        for (uint32_t x = 0; x < count; ++x, row += bytes) {
            const int32_t index = table_.Find(&line_[size_t{x} * header_.characters]);
            isDamaged_ = isDamaged_ || index < 0;
            const auto known = static_cast<size_t>(std::max(index, 0));
            if (outline_.pixels == Pixels::kIndexed) {
                *row = static_cast<uint8_t>(known);
                continue;
            }
            std::memcpy(row, &colors_[known].color, 3);
            if (bytes == 4) row[3] = colors_[known].alpha;
        }
        return count;
    }

  private:
    XpmText text_;
    const XpmHeader header_;
    Table table_;
    std::vector<XpmColor> colors_;
    std::string line_;
};

constexpr std::string_view kVersion2 = "! XPM2";

std::string_view TextOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool IsXpm(std::span<const uint8_t> header) {
    const std::string_view text = TextOf(header);
    if (text.starts_with(kVersion2)) return true;
    if (!text.starts_with("/*")) return false;
    const std::string_view comment = text.substr(2, text.find("*/") - 2);
    const size_t start = comment.find_first_not_of(" \t");
    return text.find("*/") != std::string_view::npos && start != std::string_view::npos &&
           comment.substr(start).starts_with("XPM");
}

Result OpenXpm(dib::ByteSource& source, codec::Progress&, std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, kVersion2.size()> start{};
    const size_t got = source.ReadAt(0, start).value_or(0);
    XpmText text(source, TextOf(std::span(start).first(got)) == kVersion2);
    XpmHeader header;
    if (!ReadHeader(text, header)) return Result::kBrokenData;
    auto made = std::make_unique<XpmReader>(std::move(text), header);
    if (!made->ReadColors()) return Result::kBrokenData;
    reader = std::move(made);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kXpm{L"XPM", IsXpm, OpenXpm};

}  // namespace tessary::misc
