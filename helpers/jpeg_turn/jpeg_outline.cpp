#include "helpers/jpeg_turn/jpeg_outline.h"

#include <algorithm>

namespace tessary::jpeg {
namespace {

constexpr uint8_t kStart = 0xD8;
constexpr uint8_t kEnd = 0xD9;
constexpr uint8_t kScan = 0xDA;

// Frames of all kinds; among their numbers are three that are none.
bool IsFrame(uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool StandsAlone(uint8_t marker) {
    return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

class Walk {
  public:
    explicit Walk(std::span<const uint8_t> file) : file_(file) {}

    std::optional<Outline> Go() {
        if (Byte(0) != 0xFF || Byte(1) != kStart) return std::nullopt;
        at_ = 2;
        bool isInScan = false;
        for (;;) {
            const int marker = NextMarker(isInScan);
            if (marker < 0) return std::nullopt;
            if (marker == kEnd) break;
            if (StandsAlone(static_cast<uint8_t>(marker))) continue;
            const int high = Byte(at_), low = Byte(at_ + 1);
            const size_t length = high < 0 || low < 0 ? 0 : static_cast<size_t>(high << 8 | low);
            if (length < 2 || length > file_.size() - at_) return std::nullopt;
            const Segment segment{static_cast<uint8_t>(marker), at_ + 2, length - 2};
            if (!isInScan && marker != kScan) outline_.segments.push_back(segment);
            if (IsFrame(segment.marker) && !TakeFrame(segment)) return std::nullopt;
            isInScan = isInScan || marker == kScan;
            at_ += length;
        }
        outline_.end = at_;
        return isInScan && outline_.width != 0 ? std::optional(outline_) : std::nullopt;
    }

  private:
    int Byte(size_t at) const { return at < file_.size() ? file_[at] : -1; }

    // In a scan all else is skipped, elsewhere fill bytes alone. Negative: there is none.
    int NextMarker(bool isInScan) {
        for (;;) {
            const auto rest = file_.subspan(std::min(at_, file_.size()));
            const auto mark = std::ranges::find(rest, uint8_t{0xFF});
            if (mark == rest.end() || (!isInScan && mark != rest.begin())) return -1;
            at_ += static_cast<size_t>(mark - rest.begin());
            while (Byte(at_) == 0xFF)
                ++at_;
            const int marker = Byte(at_++);
            if (marker != 0) return marker;
            if (!isInScan) return -1;
        }
    }

    bool TakeFrame(const Segment& segment) {
        if (segment.size < 6) return false;
        const auto data = file_.subspan(segment.at, segment.size);
        outline_.height = uint32_t{data[1]} << 8 | data[2];
        outline_.width = uint32_t{data[3]} << 8 | data[4];
        const size_t components = data[5];
        if (data.size() < 6 + components * 3 || outline_.width == 0 || outline_.height == 0)
            return false;
        uint32_t across = 1, down = 1;
        for (size_t i = 0; i < components && components > 1; ++i) {
            across = std::max<uint32_t>(across, data[7 + i * 3] >> 4);
            down = std::max<uint32_t>(down, data[7 + i * 3] & 15);
        }
        outline_.blockWidth = across * 8;
        outline_.blockHeight = down * 8;
        return true;
    }

    std::span<const uint8_t> file_;
    size_t at_ = 0;
    Outline outline_;
};

}  // namespace

std::optional<Outline> OutlineOf(std::span<const uint8_t> file) {
    return Walk(file).Go();
}

}  // namespace tessary::jpeg
