#include "plugins/iftesstiff/tiff_rows.h"

#include <algorithm>
#include <cstring>

namespace tessary::tiff {
namespace {

using codec::Result;

// Of what is unpacked at once. Strips of several planes may be as large as the picture.
constexpr uint64_t kMostBytes = 1U << 30;

// Behind so many broken strips nobody expects a sound one.
constexpr uint32_t kMostFailures = 256;

}  // namespace

TiffRows::TiffRows(const TiffFile& file, const TiffForm& form) : file_(file), form_(form) {}

Result TiffRows::Open() {
    TIFF* const tiff = file_.Handle();
    isTiled_ = TIFFIsTiled(tiff) != 0;
    const uint16_t planes = form_.isSeparate ? form_.sampleCount : uint16_t{1};
    const uint64_t samples = uint64_t{form_.width} * (form_.isSeparate ? 1 : form_.sampleCount);
    const uint64_t rowBytes = (samples * form_.sampleBits + 7) / 8;
    if (rowBytes > kMostBytes) return Result::kOutOfMemory;
    rowBytes_ = static_cast<size_t>(rowBytes);
    if (isTiled_) {
        tileWidth_ = file_.Long(TIFFTAG_TILEWIDTH);
        bandRows_ = file_.Long(TIFFTAG_TILELENGTH);
        const tmsize_t tileBytes = TIFFTileSize(tiff);
        const tmsize_t tileRowBytes = TIFFTileRowSize(tiff);
        if (tileWidth_ == 0 || bandRows_ == 0 || tileBytes <= 0 || tileRowBytes <= 0) {
            return Result::kBrokenData;
        }
        if (static_cast<uint64_t>(tileBytes) > kMostBytes) return Result::kOutOfMemory;
        tileRowBytes_ = static_cast<size_t>(tileRowBytes);
        tile_.resize(static_cast<size_t>(tileBytes));
        bandRows_ = std::min(bandRows_, form_.height);
    } else if (form_.isSeparate) {
        bandRows_ = std::min(file_.Long(TIFFTAG_ROWSPERSTRIP, form_.height), form_.height);
        if (bandRows_ == 0) return Result::kBrokenData;
    } else {
        // Of colours that JPEG data become where they are unpacked, too.
        if (static_cast<uint64_t>(TIFFScanlineSize(tiff)) < rowBytes) return Result::kBrokenData;
        rowBytes_ = static_cast<size_t>(TIFFScanlineSize(tiff));
        bandRows_ = 1;
    }
    if (uint64_t{bandRows_} * rowBytes_ * planes > kMostBytes) return Result::kOutOfMemory;
    planes_.resize(planes);
    for (Plane& plane : planes_) {
        plane.band.resize(rowBytes_ * bandRows_);
        plane.row = plane.band.data();
    }
    return Result::kSuccess;
}

bool TiffRows::Read(uint32_t y) {
    if (!isTiled_ && !form_.isSeparate) return ReadScanline(y);
    const uint32_t inBand = y % bandRows_;
    if (inBand == 0) isBandSound_ = ReadBand(y);
    for (Plane& plane : planes_)
        plane.row = &plane.band[inBand * rowBytes_];
    return isBandSound_;
}

// Row by row, so that a picture in one strip is never there a second time.
bool TiffRows::ReadScanline(uint32_t y) {
    std::vector<uint8_t>& row = planes_[0].band;
    const bool isTried = y >= brokenUntil_ && failuresInARow_ < kMostFailures;
    if (isTried && TIFFReadScanline(file_.Handle(), row.data(), y) > 0) {
        failuresInARow_ = 0;
        return true;
    }
    std::ranges::fill(row, uint8_t{0});
    if (!isTried) return false;
    ++failuresInARow_;
    const uint32_t strip = std::max(file_.Long(TIFFTAG_ROWSPERSTRIP, form_.height), 1U);
    const uint64_t end = (uint64_t{y} / strip + 1) * strip;
    brokenUntil_ = static_cast<uint32_t>(std::min<uint64_t>(end, form_.height));
    return false;
}

bool TiffRows::ReadBand(uint32_t y) {
    bool isSound = failuresInARow_ < kMostFailures;
    for (size_t i = 0; i < planes_.size(); ++i) {
        std::ranges::fill(planes_[i].band, uint8_t{0});
        if (failuresInARow_ >= kMostFailures) continue;
        const auto plane = static_cast<uint16_t>(i);
        const bool isRead = isTiled_ ? ReadTiles(y, plane) : ReadStrip(y, plane);
        failuresInARow_ = isRead ? 0 : failuresInARow_ + 1;
        isSound = isSound && isRead;
    }
    return isSound;
}

bool TiffRows::ReadStrip(uint32_t y, uint16_t plane) {
    TIFF* const tiff = file_.Handle();
    const uint32_t rows = std::min(bandRows_, form_.height - y);
    const auto bytes = static_cast<tmsize_t>(rowBytes_ * rows);
    return TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, plane), planes_[plane].band.data(),
                                bytes) == bytes;
}

bool TiffRows::ReadTiles(uint32_t y, uint16_t plane) {
    TIFF* const tiff = file_.Handle();
    const uint32_t rows = std::min(bandRows_, form_.height - y);
    bool isSound = true;
    for (uint64_t x = 0; x < form_.width; x += tileWidth_) {
        std::ranges::fill(tile_, uint8_t{0});
        const uint32_t tile = TIFFComputeTile(tiff, static_cast<uint32_t>(x), y, 0, plane);
        isSound = TIFFReadEncodedTile(tiff, tile, tile_.data(),
                                      static_cast<tmsize_t>(tile_.size())) > 0 &&
                  isSound;
        const uint64_t start =
            x * (form_.isSeparate ? 1 : form_.sampleCount) * form_.sampleBits / 8;
        const auto offset = static_cast<size_t>(std::min<uint64_t>(start, rowBytes_));
        const size_t count = std::min(tileRowBytes_, rowBytes_ - offset);
        for (uint32_t row = 0; row < rows && count != 0; ++row) {
            std::memcpy(&planes_[plane].band[row * rowBytes_ + offset], &tile_[row * tileRowBytes_],
                        count);
        }
    }
    return isSound;
}

}  // namespace tessary::tiff
