#include "plugins/iftesswebp/webp_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

#include "plugins/common/color_picture.h"
#include "plugins/common/whole_source.h"
#include "plugins/iftesswebp/webp_animation.h"
#include "plugins/iftesswebp/webp_pixels.h"

namespace tessary::webp {
namespace {

using codec::ColorPicture;
using codec::PictureForm;
using codec::PictureTarget;
using codec::Progress;
using codec::Result;

// The form of the container, and the beginning of the name of the first chunk in it.
constexpr std::string_view kRiff = "RIFF";
constexpr std::string_view kWebp = "WEBPVP8";
constexpr size_t kNameOffset = 8;
constexpr size_t kStartSize = kNameOffset + kWebp.size();

bool IsWebp(std::span<const uint8_t> header) {
    return header.size() >= kStartSize &&
           std::memcmp(header.data(), kRiff.data(), kRiff.size()) == 0 &&
           std::memcmp(&header[kNameOffset], kWebp.data(), kWebp.size()) == 0;
}

// Reads all of the file, too.
Result ReadFile(dib::ByteSource& source, std::vector<uint8_t>& bytes, WebpFile& file) {
    std::array<uint8_t, kStartSize> start{};
    const auto got = source.ReadAt(0, start);
    if (!got) return Result::kReadError;
    if (!IsWebp(std::span(start).first(*got))) return Result::kUnknownFormat;
    if (const Result read = codec::ReadWhole(source, bytes); read != Result::kSuccess) return read;
    auto found = ReadWebp(bytes);
    if (!found || found->width == 0 || found->height == 0) return Result::kBrokenData;
    file = *std::move(found);
    return Result::kSuccess;
}

ColorPicture PictureOf(const WebpFile& file) {
    return {.width = file.width,
            .height = file.height,
            .layout = file.hasAlpha ? color::Layout::kBgra8 : color::Layout::kBgr8,
            .orientation = file.isAnimation ? codec::kUprightOrientation : file.exif.orientation,
            .xPelsPerMeter = file.exif.xPelsPerMeter,
            .yPelsPerMeter = file.exif.yPelsPerMeter,
            .profile = file.profile};
}

// libwebp writes whole pictures only, in memory of their own unless the rows stand in the target.
Result DecodeStill(std::span<const uint8_t> bytes, const WebpFile& file, PictureTarget& target,
                   Progress& progress) {
    const ColorPicture picture = PictureOf(file);
    std::optional<codec::OrientedRows> rows;
    const Result created = CreateColorPicture(target, picture, bytes.size(), rows);
    if (created != Result::kSuccess) return created;
    PixelPlace place{.haveAlpha = file.hasAlpha, .width = file.width, .height = file.height};
    const size_t rowBytes = size_t{file.width} * color::BytesOf(picture.layout);
    std::vector<uint8_t> pixels;
    if (uint8_t* const all = rows->WholePicture(place.stride)) {
        place.first = all;
    } else {
        pixels.resize(rowBytes * file.height);
        place.first = pixels.data();
        place.stride = static_cast<ptrdiff_t>(rowBytes);
    }
    uint32_t there = 0;
    const Result result = DecodePixels(bytes, place, progress, there);
    if (result == Result::kBrokenData && there != 0) {
        progress.Tell(codec::Condition::kDamaged, kDamagedText);
    } else if (result != Result::kSuccess) {
        return result;
    }
    if (pixels.empty()) return Result::kSuccess;
    for (uint32_t y = 0; y < file.height; ++y) {
        std::memcpy(rows->RowBuffer(y), &pixels[y * rowBytes], rowBytes);
        rows->RowDone(y);
    }
    rows->Finish();
    return Result::kSuccess;
}

bool IsPlausible(const WebpFile& file, uint64_t size) {
    return codec::IsPlausibleSize(uint64_t{file.width} * file.height * codec::Canvas::kPixelBytes,
                                  size);
}

}  // namespace

bool WebpDecoder::IsSupported(std::span<const uint8_t> header) const {
    return IsWebp(header);
}

Result WebpDecoder::ReadForm(dib::ByteSource& source, PictureForm& form) const {
    std::vector<uint8_t> bytes;
    WebpFile file;
    const Result result = ReadFile(source, bytes, file);
    if (result == Result::kSuccess) form = FormOf(PictureOf(file));
    return result;
}

Result WebpDecoder::Decode(dib::ByteSource& source, PictureTarget& target,
                           Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    std::vector<uint8_t> bytes;
    WebpFile file;
    Result result = ReadFile(source, bytes, file);
    if (result != Result::kSuccess) return result;
    if (file.frames.empty() || !IsPlausible(file, bytes.size())) return Result::kBrokenData;
    const bool isCutShort = file.isCutShort;
    if (file.isAnimation) {
        WebpAnimation animation(std::move(file));
        uint32_t duration = 0;
        result = animation.Decode(source, 0, target, progress, duration);
    } else {
        result = DecodeStill(bytes, file, target, progress);
    }
    if (result != Result::kSuccess) return result;
    if (isCutShort) progress.Tell(codec::Condition::kDamaged, kDamagedText);
    return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

std::unique_ptr<codec::FrameReader> WebpDecoder::OpenFrames(dib::ByteSource& source) const {
    std::vector<uint8_t> bytes;
    WebpFile file;
    if (ReadFile(source, bytes, file) != Result::kSuccess || !file.isAnimation ||
        file.frames.size() < 2 || !IsPlausible(file, bytes.size())) {
        return nullptr;
    }
    return std::make_unique<WebpAnimation>(std::move(file));
}

}  // namespace tessary::webp
