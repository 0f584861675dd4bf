#include "plugins/iftesswic/tiff_file.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>

#include "plugins/common/picture_target.h"
#include "plugins/iftesswic/tiff_directory.h"

namespace tessary::wic {
namespace {

enum Tag : uint32_t {
    kNewSubfileType = 254,
    kSubfileType = 255,
    kWidth = 256,
    kHeight = 257,
    kBitsPerSample = 258,
    kStripOffsets = 273,
    kSamplesPerPixel = 277,
    kRowsPerStrip = 278,
    kStripByteCounts = 279,
    kPlanarConfiguration = 284,
    kColorMap = 320,
    kTileWidth = 322,
    kTileLength = 323,
    kTileOffsets = 324,
    kTileByteCounts = 325,
    kExtraSamples = 338,
    kSampleFormat = 339,
    kJpegTables = 347,
    kYcbcrCoefficients = 529,
    kReferenceBlackWhite = 532,
    kXrWidth = 0xBC80,
    kXrHeight = 0xBC81,
    kXrOffset = 0xBCC0,
    kXrByteCount = 0xBCC1,
};

constexpr uint32_t kSmallerCopy = 2;  // SubfileType
constexpr size_t kMostDirectories = 100'000;

constexpr uint32_t kSeparatePlanes = 2;
constexpr uint32_t kUnsigned = 1;
constexpr uint32_t kFloat = 3;
constexpr uint32_t kUndefined = 4;

constexpr uint32_t kMostPixelsPerSide = 0x7FFFFFFF;
constexpr uint32_t kMostSamples = 32;
constexpr uint32_t kMostBits = 64;

// Decoders unpack into a block of that many bytes at once.
constexpr uint64_t kLargestPart = 1u << 30;

// Without the values of these the pixels come out in other colours.
constexpr std::array kNeeded{kBitsPerSample, kStripOffsets,      kStripByteCounts,    kColorMap,
                             kTileOffsets,   kTileByteCounts,    kExtraSamples,       kSampleFormat,
                             kJpegTables,    kYcbcrCoefficients, kReferenceBlackWhite};

constexpr wchar_t kCutShort[] = L"TIFFデータが途中で切れています";
constexpr wchar_t kForged[] = L"TIFFの見出しの値が正しくありません";

NumberReader OrderOf(dib::ByteSource& file) {
    uint8_t order = 0;
    file.ReadAt(0, {&order, 1});
    return NumberReader(file, order == 'M');
}

constexpr uint64_t DividedUp(uint64_t value, uint64_t by) {
    return (value + by - 1) / by;
}

// How the pixels are stored: in parts (strips or tiles) of so many rows.
struct Parts {
    Tag offsets;
    Tag byteCounts;
    uint64_t count;
    uint64_t largest;  // bytes of one, unpacked
};

struct Picture {
    uint32_t width, height, bits, samples, planes;
};

std::optional<Parts> PartsOf(TiffDirectory& directory, const Picture& picture) {
    const uint64_t bitsPerPixel =
        uint64_t{picture.bits} * (picture.planes > 1 ? 1 : picture.samples);
    if (directory.Has(kTileWidth) || directory.Has(kTileOffsets)) {
        const uint64_t width = directory.ValueOr(kTileWidth, 0);
        const uint64_t length = directory.ValueOr(kTileLength, 0);
        if (width == 0 || length == 0 || width > kLargestPart || length > kLargestPart) return {};
        return Parts{
            kTileOffsets, kTileByteCounts,
            DividedUp(picture.width, width) * DividedUp(picture.height, length) * picture.planes,
            dib::RowBytes(width, static_cast<uint32_t>(bitsPerPixel)) * length};
    }
    uint64_t rows = directory.ValueOr(kRowsPerStrip, kMostPixelsPerSide);
    rows = std::clamp<uint64_t>(rows, 1, picture.height);
    const uint64_t rowBytes = dib::RowBytes(picture.width, static_cast<uint32_t>(bitsPerPixel));
    if (rowBytes > kLargestPart) return {};
    return Parts{kStripOffsets, kStripByteCounts, DividedUp(picture.height, rows) * picture.planes,
                 rowBytes * rows};
}

// Whether some of the parts reach beyond the end of the file.
bool IsCutShort(TiffDirectory& directory, const Parts& parts, uint64_t fileSize) {
    std::vector<uint32_t> sizes;
    bool isCut = false;
    uint64_t part = 0;
    // Both lists lie within the file, so they are no longer than it is.
    directory.ForEach(parts.byteCounts, parts.count, [&](uint32_t size) {
        sizes.push_back(size);
        return true;
    });
    directory.ForEach(parts.offsets, parts.count, [&](uint32_t offset) {
        isCut = offset + uint64_t{part < sizes.size() ? sizes[part] : 0} > fileSize;
        ++part;
        return !isCut;
    });
    return isCut;
}

Inspection InspectPicture(TiffDirectory& directory, const Picture& picture, uint64_t fileSize) {
    if (picture.width == 0 || picture.height == 0 || picture.width > kMostPixelsPerSide ||
        picture.height > kMostPixelsPerSide || picture.samples == 0 || picture.bits == 0) {
        return Broken(kForged);
    }
    if (picture.samples > kMostSamples || picture.bits > kMostBits) {
        return NotRead(L"色の成分が多すぎるTIFFです");
    }
    if (std::ranges::any_of(kNeeded, [&](Tag tag) { return directory.LeadsOut(tag); })) {
        return Broken(kCutShort);
    }
    const uint32_t format = directory.ValueOr(kSampleFormat, kUnsigned);
    const bool isWideFloat = format == kFloat && picture.bits >= 32;
    if (format != kUnsigned && format != kUndefined && !isWideFloat) {
        return NotRead(L"符号付きか半精度の値のTIFFには対応していません");
    }
    const auto parts = PartsOf(directory, picture);
    if (!parts || parts->largest > kLargestPart ||
        !codec::IsPlausibleSize(parts->largest, fileSize)) {
        return Broken(kForged);
    }
    // Decoders make a table as long as the picture needs, whatever the file has.
    if (directory.Count(parts->offsets) < parts->count) return Broken(kForged);
    return IsCutShort(directory, *parts, fileSize) ? Damaged(kCutShort) : Inspection{};
}

}  // namespace

std::vector<uint32_t> TiffPages(dib::ByteSource& file) {
    std::vector<uint32_t> pages;
    std::set<uint32_t> seen;  // links may lead round in a circle
    const NumberReader order = OrderOf(file);
    uint32_t at = NumberReader(order).Long(4).value_or(0);
    while (at != 0 && seen.size() < kMostDirectories && seen.insert(at).second) {
        TiffDirectory directory(file, order, at);
        if (!directory.IsThere()) break;
        // What is smaller than its page is a picture of that for lists.
        const bool isCopy = (directory.ValueOr(kNewSubfileType, 0) & 1) != 0 ||
                            directory.ValueOr(kSubfileType, 0) == kSmallerCopy;
        if (!isCopy || pages.empty()) pages.push_back(at);
        at = directory.Next();
    }
    return pages;
}

TiffFile InspectTiff(dib::ByteSource& file, PatchedSource& patched, std::optional<uint32_t> at) {
    TiffDirectory directory(file, OrderOf(file), at);
    if (!directory.IsThere()) return {Broken(kCutShort)};
    Picture picture{directory.ValueOr(kWidth, 0), directory.ValueOr(kHeight, 0),
                    directory.ValueOr(kBitsPerSample, 1), directory.ValueOr(kSamplesPerPixel, 1),
                    1};
    if (directory.ValueOr(kPlanarConfiguration, 1) == kSeparatePlanes) {
        picture.planes = picture.samples;
    }
    TiffFile tiff{InspectPicture(directory, picture, file.Size())};
    directory.Isolate(patched);
    tiff.hasBigEndianSamples = directory.IsBigEndian() && picture.bits == 16;
    tiff.rowsPerStrip = directory.Has(kTileLength) ? directory.ValueOr(kTileLength, 0)
                                                   : directory.ValueOr(kRowsPerStrip, 0);
    return tiff;
}

Inspection InspectJpegXr(dib::ByteSource& file, PatchedSource& patched) {
    constexpr wchar_t kCut[] = L"JPEG XRデータが途中で切れています";
    TiffDirectory directory(file, NumberReader(file));
    if (!directory.IsThere()) return Broken(kCut);
    const uint64_t width = directory.ValueOr(kXrWidth, 0);
    const uint64_t height = directory.ValueOr(kXrHeight, 0);
    const uint64_t offset = directory.ValueOr(kXrOffset, 0);
    const uint64_t size = directory.ValueOr(kXrByteCount, 0);
    if (width == 0 || height == 0 || width > kMostPixelsPerSide || height > kMostPixelsPerSide ||
        offset == 0 || !codec::IsPlausibleSize(width * height, file.Size())) {
        return Broken(L"JPEG XRの見出しの値が正しくありません");
    }
    if (offset >= file.Size()) return Broken(kCut);
    directory.Isolate(patched);
    return offset + size > file.Size() ? Damaged(kCut) : Inspection{};
}

}  // namespace tessary::wic
