#include "plugins/iftesswic/icon_directory.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <tuple>
#include <vector>

#include "helpers/dib/bitmap_header.h"
#include "plugins/common/picture_target.h"

namespace tessary::wic {
namespace {

// ICONDIR: reserved, type (1 icon, 2 cursor), count; then 16 bytes per picture: width, height,
// colours, reserved, planes, bit count, size, offset.
constexpr size_t kDirectorySize = 6;
constexpr size_t kEntrySize = 16;
constexpr size_t kTypeOffset = 2;
constexpr size_t kCountOffset = 4;
constexpr uint8_t kIconType = 1;

constexpr uint32_t kMostPixelsPerSide = 0xFFFF;
constexpr size_t kMostPictures = 256;

uint32_t Little(std::span<const uint8_t> bytes, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= uint32_t{bytes[at + i]} << (8 * i);
    return value;
}

// What makes an entry the better one to show, the most important first.
using Rank = std::tuple<uint32_t, uint32_t, uint32_t>;

Rank RankOf(std::span<const uint8_t> entry, bool isIcon) {
    const auto side = [](uint8_t stored) { return stored == 0 ? 256u : stored; };
    const uint32_t area = side(entry[0]) * side(entry[1]);
    return {area, isIcon ? Little(entry, 6, 2) : 0, Little(entry, 8, 4)};
}

void PutLittle(std::span<uint8_t> out, uint32_t value) {
    for (size_t i = 0; i < 4; ++i)
        out[i] = static_cast<uint8_t>(value >> (8 * i));
}

enum class State { kWhole, kCutShort, kUnsound };

struct Picture {
    std::array<uint8_t, kEntrySize> entry;
    Rank rank;
    uint64_t offset;
    uint64_t size;  // bytes that a decoder is to see
    State state = State::kUnsound;
};

// Bytes of a picture whose header says so: colour table, pixels, and the mask. Nothing for a header
// that no icon has.
struct DibSize {
    uint64_t pixelsEnd;
    uint64_t all;
};
std::optional<DibSize> SizeOfDib(std::span<const uint8_t> header) {
    const uint32_t headerSize = Little(header, 0, 4), bits = Little(header, 14, 2);
    const uint32_t width = Little(header, 4, 4), height = Little(header, 8, 4);  // of both halves
    const uint32_t compression = Little(header, 16, 4), colors = Little(header, 32, 4);
    constexpr std::array kDepths{1u, 4u, 8u, 16u, 24u, 32u};
    if (headerSize < dib::kInfoHeaderSize || headerSize > 124 || width == 0 ||
        width > kMostPixelsPerSide || height < 2 || height > 2 * kMostPixelsPerSide ||
        std::ranges::find(kDepths, bits) == kDepths.end() || colors > dib::kMaxPaletteEntries ||
        (compression != dib::kCompressionRgb && compression != dib::kCompressionBitFields)) {
        return std::nullopt;
    }
    const uint32_t entries = colors != 0 ? colors : bits <= 8 ? 1u << bits : 0;
    const uint64_t rows = height / 2;
    const uint64_t end = headerSize + uint64_t{entries} * 4 + dib::RowStride(width, bits) * rows;
    return DibSize{end, end + dib::RowStride(width, 1) * rows};
}

// The size that the first chunk of a PNG file tells must be one that its bytes can hold.
bool IsSoundPng(std::span<const uint8_t> start, uint64_t size) {
    const auto side = [&](size_t at) {
        return start[at] << 24 | start[at + 1] << 16 | start[at + 2] << 8 | start[at + 3];
    };
    const int64_t width = side(16), height = side(20);
    return std::ranges::equal(start.subspan(12, 4), std::string_view("IHDR")) && width > 0 &&
           height > 0 && width <= int64_t{kMostPixelsPerSide} &&
           height <= int64_t{kMostPixelsPerSide} &&
           codec::IsPlausibleSize(static_cast<uint64_t>(width * height) * 4, size);
}

void Judge(dib::ByteSource& file, Picture& picture) {
    std::array<uint8_t, dib::kInfoHeaderSize> start{};
    const uint64_t fileSize = file.Size();
    if (picture.offset < kDirectorySize + kEntrySize || picture.offset >= fileSize ||
        file.ReadAt(picture.offset, start).value_or(0) != start.size()) {
        return;
    }
    const uint64_t there = fileSize - picture.offset;
    if (start[0] == 0x89 && start[1] == 'P') {
        if (!IsSoundPng(start, there)) return;
        picture.state = picture.size <= there ? State::kWhole : State::kCutShort;
        picture.size = std::min(picture.size, there);
        return;
    }
    const auto needed = SizeOfDib(start);
    // A picture without any pixel would be made of nothing.
    if (!needed || !codec::IsPlausibleSize(needed->all, fileSize) ||
        there <= dib::kInfoHeaderSize) {
        return;
    }
    picture.state = needed->pixelsEnd <= there ? State::kWhole : State::kCutShort;
    // Some programs leave the mask out of the size, or out of the file.
    picture.size = std::max(needed->all, std::min(picture.size, there));
}

// Those that can be shown, the best ones first, those cut short behind all others; as many as any
// file needs. `isBestWhole`: the best of all is the first of them.
std::vector<Picture> PicturesOf(dib::ByteSource& file, bool& isBestWhole) {
    std::array<uint8_t, kDirectorySize> start{};
    if (file.ReadAt(0, start).value_or(0) != start.size()) return {};
    const bool isIcon = start[kTypeOffset] == kIconType;
    std::vector<uint8_t> entries(Little(start, kCountOffset, 2) * kEntrySize);
    const size_t count = file.ReadAt(kDirectorySize, entries).value_or(0) / kEntrySize;
    std::vector<Picture> pictures(count);
    for (size_t i = 0; i < count; ++i) {
        const auto entry = std::span<const uint8_t>(entries).subspan(i * kEntrySize, kEntrySize);
        std::ranges::copy(entry, pictures[i].entry.begin());
        pictures[i].rank = RankOf(entry, isIcon);
        pictures[i].size = Little(entry, 8, 4);
        pictures[i].offset = Little(entry, 12, 4);
    }
    std::ranges::stable_sort(pictures, std::greater(), &Picture::rank);
    if (pictures.size() > kMostPictures) pictures.resize(kMostPictures);
    for (Picture& picture : pictures)
        Judge(file, picture);
    isBestWhole = !pictures.empty() && pictures.front().state == State::kWhole;
    std::erase_if(pictures,
                  [](const Picture& picture) { return picture.state == State::kUnsound; });
    std::stable_partition(pictures.begin(), pictures.end(),
                          [](const Picture& picture) { return picture.state == State::kWhole; });
    return pictures;
}

}  // namespace

bool IsIconDirectory(std::span<const uint8_t> header) {
    if (header.size() < kDirectorySize + kEntrySize) return false;
    const uint32_t count = Little(header, kCountOffset, 2);
    const auto entry = header.subspan(kDirectorySize, kEntrySize);
    return count != 0 && Little(entry, 8, 4) != 0 &&
           Little(entry, 12, 4) >= kDirectorySize + count * kEntrySize;
}

uint32_t CountIcons(dib::ByteSource& file) {
    bool isBestWhole = false;
    return static_cast<uint32_t>(PicturesOf(file, isBestWhole).size());
}

SingleIcon::SingleIcon(dib::ByteSource& file, uint32_t page) : file_(file) {
    bool isBestWhole = false;
    const std::vector<Picture> pictures = PicturesOf(file, isBestWhole);
    if (page >= pictures.size()) {
        inspection_ = Broken(L"アイコンの見出しの値が正しくありません");
        return;
    }
    const Picture& picture = pictures[page];
    if (picture.state == State::kCutShort) {
        inspection_ = Damaged(L"アイコンのデータが途中で切れています");
    } else if (page == 0 && !isBestWhole) {
        inspection_ = Damaged(L"一番大きいアイコンが壊れています");
    }
    offset_ = picture.offset;
    size_ = picture.size;
    start_[kTypeOffset] = kIconType;
    start_[kCountOffset] = 1;
    const auto entry = std::span(start_).subspan(kDirectorySize);
    std::ranges::copy(picture.entry, entry.begin());
    PutLittle(entry.subspan(8), static_cast<uint32_t>(size_));
    PutLittle(entry.subspan(12), static_cast<uint32_t>(kStartSize));
}

std::optional<size_t> SingleIcon::ReadAt(uint64_t offset, std::span<uint8_t> out) {
    if (offset >= Size()) return 0;
    out = out.first(static_cast<size_t>(std::min<uint64_t>(out.size(), Size() - offset)));
    size_t done = 0;
    for (; done < out.size() && offset + done < kStartSize; ++done)
        out[done] = start_[static_cast<size_t>(offset + done)];
    const auto rest = out.subspan(done);
    if (rest.empty()) return done;
    const auto got = file_.ReadAt(offset_ + (offset + done - kStartSize), rest);
    if (!got) return std::nullopt;
    std::ranges::fill(rest.subspan(*got), uint8_t{0});
    return out.size();
}

}  // namespace tessary::wic
