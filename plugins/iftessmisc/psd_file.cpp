#include "plugins/iftessmisc/psd_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "plugins/common/exif.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

constexpr std::string_view kSignature = "8BPS";
constexpr size_t kHeaderSize = 26;
constexpr uint32_t kMostSide = 300'000;
constexpr uint16_t kMostChannels = 56;
constexpr size_t kTableSize = 768;

// Numbers of resources.
constexpr uint16_t kResolution = 1005;
constexpr uint16_t kProfile = 1039;
constexpr uint16_t kClearIndex = 1047;
constexpr uint16_t kVersion = 1057;

constexpr size_t kResourceHead = 6;  // signature and number
constexpr size_t kBlockHead = 8;     // signature and key
constexpr uint64_t kMostBlocks = 10'000;

// Reads numbers one after the other; behind the end all are 0.
class Walk {
  public:
    explicit Walk(dib::ByteSource& source, uint64_t position) : source_(source), at_(position) {}

    uint64_t at() const { return at_; }
    uint64_t Number(size_t size) {
        std::array<uint8_t, 8> bytes{};
        const size_t got = source_.ReadAt(at_, std::span(bytes).first(size)).value_or(0);
        at_ += size;
        if (got != size) return 0;
        return size == 1   ? bytes[0]
               : size == 2 ? Big16(bytes.data())
               : size == 4 ? Big32(bytes.data())
                           : Big64(bytes.data());
    }
    void GoTo(uint64_t position) { at_ = position; }

  private:
    dib::ByteSource& source_;
    uint64_t at_;
};

std::vector<uint8_t> BytesAt(dib::ByteSource& source, uint64_t offset, uint64_t size) {
    const uint64_t all = source.Size();
    std::vector<uint8_t> bytes(static_cast<size_t>(std::min(size, all - std::min(offset, all))));
    bytes.resize(source.ReadAt(offset, bytes).value_or(0));
    return bytes;
}

// 16 bits before the point and 16 behind it.
int32_t PelsOf(const uint8_t* fixed) {
    return codec::PelsPerMeterFromInch(Big32(fixed) / 65536.0);
}

void TakeResource(dib::ByteSource& source, uint16_t number, uint64_t at, uint64_t size,
                  PsdFile& file) {
    if (number == kProfile && size <= color::kLargestProfile) {
        file.profile = color::Profile::FromIcc(BytesAt(source, at, size));
        return;
    }
    if (number != kResolution && number != kClearIndex && number != kVersion) return;
    const std::vector<uint8_t> bytes = BytesAt(source, at, std::min<uint64_t>(size, 16));
    if (number == kResolution && bytes.size() >= 12) {
        file.xPelsPerMeter = PelsOf(&bytes[0]);
        file.yPelsPerMeter = PelsOf(&bytes[8]);
    } else if (number == kClearIndex && bytes.size() >= 2) {
        file.clearIndex = Big16(bytes.data());
    } else if (number == kVersion && bytes.size() >= 5) {
        file.hasComposite = bytes[4] != 0;
    }
}

void ReadResources(dib::ByteSource& source, uint64_t start, uint64_t end, PsdFile& file) {
    end = std::min(end, source.Size());
    Walk walk(source, start);
    for (uint64_t i = 0; i < kMostBlocks && walk.at() + kResourceHead < end; ++i) {
        walk.Number(4);
        const auto number = static_cast<uint16_t>(walk.Number(2));
        const uint64_t name = walk.Number(1);
        walk.GoTo(walk.at() + name + (name + 1) % 2);
        const uint64_t size = walk.Number(4);
        TakeResource(source, number, walk.at(), std::min(size, end - std::min(end, walk.at())),
                     file);
        walk.GoTo(walk.at() + size + size % 2);
    }
}

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, name) != names.end();
}

// Whether the count of layers, which stands there, is below 0: so it is told that the composite is
// transparent.
bool IsCountNegative(Walk walk) {
    return (walk.Number(2) & 0x8000) != 0;
}

// Files of 16 and 32 bits have their layers in blocks behind the usual place.
bool IsTransparent(dib::ByteSource& source, uint64_t start, uint64_t end, bool isLarge) {
    Walk walk(source, start);
    end = std::min(end, source.Size());
    const uint64_t layers = walk.Number(isLarge ? 8 : 4);
    if (layers != 0) return IsCountNegative(walk);
    const uint64_t mask = walk.Number(4);
    walk.GoTo(walk.at() + mask);
    for (uint64_t i = 0; i < kMostBlocks && walk.at() + kBlockHead < end; ++i) {
        const std::vector<uint8_t> head = BytesAt(source, walk.at(), kBlockHead);
        if (head.size() < kBlockHead) return false;
        const std::string_view key(reinterpret_cast<const char*>(&head[4]), 4);
        if (head[0] != '8' || head[1] != 'B') return false;
        if (IsOneOf(key, {"Mtrn", "Mt16", "Mt32"})) return true;
        const bool isLong = isLarge && IsOneOf(key, {"LMsk", "Lr16", "Lr32", "Layr", "Alph", "FMsk",
                                                     "lnk2", "FEid", "FXid", "PxSD"});
        walk.GoTo(walk.at() + kBlockHead);
        const uint64_t size = walk.Number(isLong ? 8 : 4);
        if (IsOneOf(key, {"Lr16", "Lr32"}) && size != 0 && IsCountNegative(walk)) return true;
        if (size > end) return false;
        walk.GoTo(walk.at() + (size + 3) / 4 * 4);
    }
    return false;
}

}  // namespace

unsigned PsdFile::Colors() const {
    switch (mode) {
        case PsdMode::kRgb:
        case PsdMode::kLab:
            return 3;
        case PsdMode::kCmyk:
            return 4;
        case PsdMode::kMultichannel:
            return channels >= 4 ? 4 : channels == 3 ? 3 : 1;
        default:
            return 1;
    }
}

bool IsPsd(std::span<const uint8_t> header) {
    return header.size() >= kHeaderSize &&
           std::memcmp(header.data(), kSignature.data(), kSignature.size()) == 0 &&
           (Big16(&header[4]) == 1 || Big16(&header[4]) == 2);
}

std::optional<PsdFile> ReadPsd(dib::ByteSource& source) {
    std::array<uint8_t, kHeaderSize> header{};
    if (source.ReadAt(0, header).value_or(0) != header.size() || !IsPsd(header)) {
        return std::nullopt;
    }
    PsdFile file{.isLarge = Big16(&header[4]) == 2,
                 .channels = Big16(&header[12]),
                 .width = Big32(&header[18]),
                 .height = Big32(&header[14]),
                 .depth = Big16(&header[22]),
                 .mode = static_cast<PsdMode>(Big16(&header[24]))};
    if (file.width == 0 || file.height == 0 || file.width > kMostSide || file.height > kMostSide ||
        file.channels == 0 || file.channels > kMostChannels) {
        return std::nullopt;
    }
    Walk walk(source, kHeaderSize);
    const uint64_t tableSize = walk.Number(4);
    if (file.mode == PsdMode::kIndexed) {
        file.colorTable = BytesAt(source, walk.at(), std::min<uint64_t>(tableSize, kTableSize));
        file.colorTable.resize(kTableSize);
    }
    walk.GoTo(walk.at() + tableSize);
    const uint64_t resources = walk.Number(4);
    ReadResources(source, walk.at(), walk.at() + resources, file);
    walk.GoTo(walk.at() + resources);
    const uint64_t layers = walk.Number(file.isLarge ? 8 : 4);
    if (layers > source.Size()) return std::nullopt;
    if (layers != 0) {
        file.isTransparent = IsTransparent(source, walk.at(), walk.at() + layers, file.isLarge);
    }
    file.pixelOffset = walk.at() + layers;
    return file;
}

}  // namespace tessary::misc
