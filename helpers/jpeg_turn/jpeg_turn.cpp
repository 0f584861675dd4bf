#include "helpers/jpeg_turn/jpeg_turn.h"

#include <turbojpeg.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "helpers/exif/exif_patch.h"
#include "helpers/jpeg_turn/jpeg_outline.h"

namespace tessary::jpeg {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExifName = "Exif\0\0"sv;
constexpr std::string_view kXmpName = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kMoreName = "MPF\0"sv;  // the list of further pictures
constexpr std::string_view kJfifName = "JFIF\0"sv;

constexpr uint8_t kApp0 = 0xE0;
constexpr uint8_t kApp1 = 0xE1;
constexpr uint8_t kApp2 = 0xE2;
constexpr size_t kJfifDensity = 8;  // across, then down; two bytes each

template <typename Byte>
std::span<Byte> DataOf(std::span<Byte> file, const Segment& segment, uint8_t marker,
                       std::string_view name) {
    const auto data = file.subspan(segment.at, segment.size);
    const bool isIt = segment.marker == marker && data.size() >= name.size() &&
                      std::memcmp(data.data(), name.data(), name.size()) == 0;
    return isIt ? data.subspan(name.size()) : std::span<Byte>();
}

// As the decoder of ours takes it.
uint16_t OrientationIn(std::span<uint8_t> file, const Outline& outline) {
    uint16_t found = exif::kUpright;
    for (const Segment& segment : outline.segments) {
        const auto orientation =
            exif::ExifPatch(DataOf(file, segment, kApp1, kExifName)).Orientation();
        if (orientation.value_or(exif::kUpright) != exif::kUpright) found = *orientation;
    }
    return found;
}

// False when EXIF has none.
bool SetOrientationIn(std::span<uint8_t> file, const Outline& outline, uint16_t orientation) {
    bool isSet = false;
    for (const Segment& segment : outline.segments) {
        exif::ExifPatch patch(DataOf(file, segment, kApp1, kExifName));
        isSet = patch.SetOrientation(orientation) || isSet;
        exif::SetXmpOrientation(DataOf(file, segment, kApp1, kXmpName), orientation);
    }
    return isSet;
}

TJXOP OperationOf(uint16_t orientation) {
    constexpr TJXOP kOperations[] = {TJXOP_NONE,      TJXOP_HFLIP, TJXOP_ROT180,     TJXOP_VFLIP,
                                     TJXOP_TRANSPOSE, TJXOP_ROT90, TJXOP_TRANSVERSE, TJXOP_ROT270};
    return kOperations[orientation - 1];
}

struct CloseHandle {
    void operator()(void* handle) const { tjDestroy(handle); }
};
struct FreeBytes {
    void operator()(unsigned char* bytes) const { tjFree(bytes); }
};

TurnResult ReasonOf(tjhandle handle) {
    const bool isMemory = std::strstr(tjGetErrorStr2(handle), "emory") != nullptr;
    return isMemory ? TurnResult::kNoMemory : TurnResult::kDamaged;
}

// The file with its pixels turned; empty for another result than kTurned.
std::vector<uint8_t> TurnPixels(std::span<const uint8_t> file, uint16_t orientation, bool trims,
                                bool isProgressive, TurnResult& result) {
    result = TurnResult::kNoMemory;
    const std::unique_ptr<void, CloseHandle> handle(tjInitTransform());
    if (!handle) return {};
    tjtransform transform{};
    transform.op = OperationOf(orientation);
    transform.options =
        (trims ? TJXOPT_TRIM : TJXOPT_PERFECT) | (isProgressive ? TJXOPT_PROGRESSIVE : 0);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    const int failed =
        tjTransform(handle.get(), file.data(), static_cast<unsigned long>(file.size()), 1, &bytes,
                    &size, &transform, TJFLAG_STOPONWARNING | TJFLAG_LIMITSCANS);
    const std::unique_ptr<unsigned char, FreeBytes> owner(bytes);
    result = failed != 0 ? ReasonOf(handle.get()) : TurnResult::kTurned;
    if (failed != 0) return {};
    return {bytes, bytes + size};
}

bool IsProgressive(const Outline& outline) {
    return std::ranges::any_of(outline.segments, [](const Segment& segment) {
        return segment.marker == 0xC2 || segment.marker == 0xCA;
    });
}

// Sets `turned` to what cannot be turned in place.
void TellTrimmed(const Outline& outline, uint16_t orientation, TurnedJpeg& turned) {
    const uint32_t right = outline.width % outline.blockWidth;
    const uint32_t bottom = outline.height % outline.blockHeight;
    switch (orientation) {
        case exif::kMirrored:
            turned.left = right;
            break;
        case exif::kHalfTurned:
            turned.left = right;
            turned.top = bottom;
            break;
        case exif::kFlipped:
            turned.top = bottom;
            break;
        case exif::kTurnedRight:
            turned.left = bottom;
            break;
        case exif::kTransverse:
            turned.left = bottom;
            turned.top = right;
            break;
        case exif::kTurnedLeft:
            turned.top = right;
            break;
        default:
            break;
    }
}

// A small picture has to come out exactly.
std::vector<uint8_t> TurnThumbnail(std::span<const uint8_t> file, uint16_t orientation) {
    const std::optional<Outline> outline = OutlineOf(file);
    TurnResult result{};
    return outline ? TurnPixels(file, orientation, false, IsProgressive(*outline), result)
                   : std::vector<uint8_t>();
}

void PutRight(std::span<uint8_t> file, const Outline& outline, uint16_t orientation) {
    const bool swaps = exif::SwapsSides(orientation);
    for (const Segment& segment : outline.segments) {
        exif::ExifPatch patch(DataOf(file, segment, kApp1, kExifName));
        patch.SetSize(outline.width, outline.height, swaps);
        patch.ReplaceThumbnail(
            [&](std::span<const uint8_t> small) { return TurnThumbnail(small, orientation); });
        const auto jfif = DataOf(file, segment, kApp0, kJfifName);
        if (swaps && jfif.size() >= kJfifDensity - 1) {
            std::swap_ranges(jfif.begin() + 3, jfif.begin() + 5, jfif.begin() + 5);
        }
    }
    SetOrientationIn(file, outline, exif::kUpright);
}

// Whether the decoder has turned the picture as the file says; nothing when that cannot be told.
std::optional<bool> HasFollowed(const Outline& outline, uint16_t marked, const TurnWish& wish) {
    const bool isSame = wish.width == outline.width && wish.height == outline.height;
    const bool isSwapped = wish.width == outline.height && wish.height == outline.width;
    const bool swaps = exif::SwapsSides(marked);
    if (marked == exif::kUpright || wish.followsFile) {
        return (swaps ? isSwapped : isSame) ? std::optional(true) : std::nullopt;
    }
    if (!swaps || isSame == isSwapped) return std::nullopt;
    return isSwapped;
}

bool HasFurtherPictures(std::span<const uint8_t> file, const Outline& outline) {
    return outline.end < file.size() &&
           std::ranges::any_of(outline.segments, [&](const Segment& segment) {
               return !DataOf(file, segment, kApp2, kMoreName).empty();
           });
}

}  // namespace

TurnedJpeg Turn(std::span<const uint8_t> file, const TurnWish& wish) {
    TurnedJpeg turned;
    const std::optional<Outline> outline = OutlineOf(file);
    if (!outline || !exif::IsOrientation(wish.orientation)) return turned;
    std::vector<uint8_t> copy(file.begin(), file.end());
    const uint16_t marked = OrientationIn(copy, *outline);
    const std::optional<bool> hasFollowed = HasFollowed(*outline, marked, wish);
    if (!hasFollowed) {
        turned.result = TurnResult::kNotThis;
        return turned;
    }
    const uint16_t orientation =
        *hasFollowed ? exif::Composed(marked, wish.orientation) : wish.orientation;
    // Further pictures lie as the file says of the first.
    const bool hasMore = HasFurtherPictures(file, *outline);
    if (hasMore || orientation == exif::kUpright) {
        const bool isSet = SetOrientationIn(copy, *outline, orientation) || !hasMore;
        turned.result = isSet ? TurnResult::kMarked : TurnResult::kFurtherPictures;
        if (isSet) turned.file = std::move(copy);
        return turned;
    }
    TellTrimmed(*outline, orientation, turned);
    const uint32_t width = exif::SwapsSides(orientation) ? outline->height : outline->width;
    const uint32_t height = exif::SwapsSides(orientation) ? outline->width : outline->height;
    const bool needsTrim = turned.left != 0 || turned.top != 0;
    if (turned.left == width || turned.top == height) {
        turned.result = TurnResult::kTooSmall;
        return turned;
    }
    if (needsTrim && !wish.trims) {
        turned.result = TurnResult::kWouldTrim;
        return turned;
    }
    std::vector<uint8_t> made = TurnPixels(file.first(outline->end), orientation, needsTrim,
                                           IsProgressive(*outline), turned.result);
    const std::optional<Outline> outcome = OutlineOf(made);
    if (!outcome) return turned;
    PutRight(made, *outcome, orientation);
    made.insert(made.end(), file.begin() + static_cast<ptrdiff_t>(outline->end), file.end());
    turned.file = std::move(made);
    return turned;
}

}  // namespace tessary::jpeg
