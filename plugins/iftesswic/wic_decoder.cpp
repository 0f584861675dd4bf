#include "plugins/iftesswic/wic_decoder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "plugins/common/flatten_rows.h"
#include "plugins/common/oriented_rows.h"
#include "plugins/common/palette.h"
#include "plugins/iftesswic/pixel_rows.h"
#include "plugins/iftesswic/safe_file.h"
#include "plugins/iftesswic/source_stream.h"
#include "plugins/iftesswic/tiff_file.h"
#include "plugins/iftesswic/wic_frame.h"

namespace tessary::wic {
namespace {

using codec::Result;

constexpr size_t kHeaderSize = 64;

// Bytes that are fetched from a decoder at once, where it can fetch parts.
constexpr size_t kBandSize = 4u << 20;

Result ResultOf(HRESULT code) {
    switch (code) {
        case E_OUTOFMEMORY:
            return Result::kOutOfMemory;
        case STG_E_READFAULT:
            return Result::kReadError;
        case WINCODEC_ERR_COMPONENTNOTFOUND:
        case WINCODEC_ERR_UNKNOWNIMAGEFORMAT:
        case WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT:
        case WINCODEC_ERR_UNSUPPORTEDOPERATION:
        case WINCODEC_ERR_UNSUPPORTEDVERSION:
        case REGDB_E_CLASSNOTREG:
            return Result::kUnknownFormat;
        default:
            return Result::kBrokenData;
    }
}

bool HasClearPixels(std::span<const uint8_t> bgra) {
    for (size_t at = 3; at < bgra.size(); at += 4)
        if (bgra[at] != 0xFF) return true;
    return false;
}

// The pixels of a frame on their way into the target.
class FrameCopy {
  public:
    // `stripRows` is how many rows are stored together, 0 where they all are.
    FrameCopy(const WicFrame& frame, uint32_t stripRows)
        : frame_(frame), pixels_(frame.Pixels()), stripRows_(stripRows) {}

    codec::PictureForm Form() const;
    // Into a target that takes it, alpha goes along where there is any; not that of pictures which
    // come in bands.
    Result Run(uint64_t sourceSize, codec::PictureTarget& target, codec::Progress& progress) const;

  private:
    unsigned TargetBits() const;
    uint32_t RowsPerBand(size_t stride) const;
    bool MayHaveAlpha() const {
        return pixels_.layout == color::Layout::kBgra8 && pixels_.bitCount == 32 && stripRows_ == 0;
    }
    HRESULT CopyBand(uint32_t top, uint32_t count, std::vector<uint8_t>& band) const;
    void ConvertRow(const uint8_t* in, uint8_t* out, unsigned targetBits) const;
    codec::RowConversion Conversion(bool keepsAlpha) const;

    const WicFrame& frame_;
    WicPixels pixels_;
    uint32_t stripRows_;
};

unsigned FrameCopy::TargetBits() const {
    if (pixels_.palette.empty()) return 24;
    // Bitmaps have no 2-bit form, and only whole bytes are mirrored or turned.
    const bool upright = frame_.Orientation() == codec::kUprightOrientation;
    return upright && pixels_.bitCount != 2 ? std::min(pixels_.bitCount, 8u) : 8;
}

codec::PictureForm FrameCopy::Form() const {
    codec::PictureForm form;
    form.width = frame_.Width();
    form.height = frame_.Height();
    form.bitCount = static_cast<uint16_t>(TargetBits());
    form.xPelsPerMeter = frame_.XPelsPerMeter();
    form.yPelsPerMeter = frame_.YPelsPerMeter();
    if (codec::SwapsAxes(frame_.Orientation())) {
        std::swap(form.width, form.height);
        std::swap(form.xPelsPerMeter, form.yPelsPerMeter);
    }
    return form;
}

// TIFF is stored in strips and often large, so it comes in bands, with a chance to stop between
// them. The other decoders may well decode the whole picture again for every band.
uint32_t FrameCopy::RowsPerBand(size_t stride) const {
    const uint32_t height = frame_.Height();
    if (stripRows_ == 0) return height;
    return std::clamp<uint32_t>(static_cast<uint32_t>(kBandSize / stride), 1, height);
}

HRESULT FrameCopy::CopyBand(uint32_t top, uint32_t count, std::vector<uint8_t>& band) const {
    const auto stride = static_cast<size_t>(dib::RowStride(frame_.Width(), pixels_.bitCount));
    band.resize(stride * count);
    const WICRect area{0, static_cast<INT>(top), static_cast<INT>(frame_.Width()),
                       static_cast<INT>(count)};
    return pixels_.source->CopyPixels(&area, static_cast<UINT>(stride),
                                      static_cast<UINT>(stride * count), band.data());
}

void FrameCopy::ConvertRow(const uint8_t* in, uint8_t* out, unsigned targetBits) const {
    const uint32_t width = frame_.Width();
    if (targetBits == pixels_.bitCount) {
        std::memcpy(out, in, static_cast<size_t>(dib::RowBytes(width, targetBits)));
    } else if (pixels_.palette.empty()) {
        codec::FlattenColorRow(in, out, width, codec::kWhite);
    } else {
        UnpackRow(in, out, width, pixels_.bitCount);
    }
}

// Of rows whose colours are not in sRGB.
codec::RowConversion FrameCopy::Conversion(bool keepsAlpha) const {
    if (!pixels_.toSrgb) return {};
    return {pixels_.bitCount / 8, [this, keepsAlpha](const uint8_t* in, uint8_t* out) {
                constexpr uint32_t kPart = 256;
                std::array<uint8_t, kPart * 4> part;
                const uint32_t width = frame_.Width();
                if (keepsAlpha || color::TargetBytesOf(pixels_.layout) == 3) {
                    return pixels_.toSrgb->Convert(in, out, width);
                }
                for (uint32_t x = 0; x < width; x += kPart) {
                    const uint32_t count = std::min(kPart, width - x);
                    pixels_.toSrgb->Convert(in + size_t{x} * 4, part.data(), count);
                    codec::FlattenColorRow(part.data(), out + size_t{x} * 3, count, codec::kWhite);
                }
            }};
}

Result FrameCopy::Run(uint64_t sourceSize, codec::PictureTarget& target,
                      codec::Progress& progress) const {
    const uint32_t width = frame_.Width(), height = frame_.Height();
    const auto stride = static_cast<size_t>(dib::RowStride(width, pixels_.bitCount));
    const auto rowBytes = static_cast<size_t>(dib::RowBytes(width, pixels_.bitCount));
    codec::PictureForm form = Form();
    std::vector<uint8_t> band;
    bool isFetched = false;
    if (target.TakesAlpha() && MayHaveAlpha() &&
        codec::IsPlausibleSize(uint64_t{stride} * height, sourceSize)) {
        Check(CopyBand(0, height, band));
        isFetched = true;
        if (HasClearPixels(band)) form.bitCount = 32;
    }
    codec::PictureRows rows;
    const Result created = CreatePicture(target, form, pixels_.palette, sourceSize, rows);
    if (created != Result::kSuccess) return created;

    codec::OrientedRows oriented(
        {rows, width, height, std::max(form.bitCount / 8u, 1u), frame_.Orientation()},
        Conversion(form.bitCount == 32));
    uint32_t bandRows = RowsPerBand(stride);
    uint32_t rowsMissing = 0;
    for (uint32_t top = 0; top < height;) {
        // A strip that cannot be read must not take its neighbours along.
        uint32_t count = std::min(bandRows, height - top);
        HRESULT copied = isFetched ? S_OK : CopyBand(top, count, band);
        if (FAILED(copied) && stripRows_ != 0 && stripRows_ < count) {
            bandRows = stripRows_;
            count = stripRows_ - top % stripRows_;
            copied = CopyBand(top, count, band);
        }
        if (FAILED(copied)) {
            if (stripRows_ == 0 || (rowsMissing += count) == height) throw ComFailure{copied};
            const bool areInks = pixels_.layout == color::Layout::kCmyk8;
            std::ranges::fill(band, areInks ? uint8_t{0} : uint8_t{0xFF});
        }
        for (uint32_t y = top; y < top + count; ++y) {
            const uint8_t* row = band.data() + (y - top) * stride;
            if (pixels_.toSrgb) {
                std::memcpy(oriented.RowBuffer(y), row, rowBytes);
            } else {
                ConvertRow(row, oriented.RowBuffer(y), form.bitCount);
            }
            oriented.RowDone(y);
            if (!progress.Report(y + 1, height)) return Result::kAborted;
        }
        top += count;
    }
    oriented.Finish();
    if (rowsMissing != 0) {
        progress.Tell(codec::Condition::kDamaged, L"TIFFデータが壊れているか、途中で切れています");
    }
    return Result::kSuccess;
}

// Nothing where the medium fails.
std::optional<Container> ContainerOf(dib::ByteSource& source) {
    std::array<uint8_t, kHeaderSize> header{};
    const auto count = source.ReadAt(0, header);
    if (!count) return std::nullopt;
    return DetectContainer(std::span(header).first(*count));
}

// Opens the file and gives the picture of a page to `use`. Nothing of COM is left when it returns.
template <class Use>
Result WithFrame(dib::ByteSource& source, const SafeFile::Page& page, codec::Progress& progress,
                 Use use) {
    const std::optional<Container> known = ContainerOf(source);
    if (!known) return Result::kReadError;
    const Container container = *known;
    SafeFile file(source, container, page);
    progress.Tell(file.Found().remark.condition, file.Found().remark.text);
    if (file.Found().result != Result::kSuccess) return file.Found().result;
    try {
        const ComApartment apartment;
        if (file.HasBigEndianSamples() && !ReadsBigEndianSamples()) {
            progress.Tell(codec::Condition::kKindNotRead,
                          L"16ビットのビッグエンディアンのTIFFを、このシステムは正しく読めません");
            return Result::kUnknownFormat;
        }
        const LentStream stream(file.Source());
        const WicFrame frame(container, stream.Get());
        return use(FrameCopy(frame, file.RowsPerStrip()));
    } catch (const ComFailure& failure) {
        const Result result = ResultOf(failure.code);
        // The system's decoders seldom tell what they miss from what they do not know. A lack of
        // memory and a disk that cannot be read say nothing about the picture.
        if (result == Result::kUnknownFormat || result == Result::kBrokenData) {
            progress.Tell(codec::Condition::kKindNotRead,
                          L"壊れているか、このシステムが対応していない種類の画像です");
        }
        return result;
    }
}

Result DecodePage(dib::ByteSource& source, const SafeFile::Page& page, codec::PictureTarget& target,
                  codec::Progress& progress) {
    if (!progress.Report(0, 1)) return Result::kAborted;
    return WithFrame(source, page, progress, [&](const FrameCopy& copy) {
        return copy.Run(source.Size(), target, progress);
    });
}

class WicPages final : public codec::FrameReader {
  public:
    explicit WicPages(std::vector<SafeFile::Page> pages) : pages_(std::move(pages)) {}

    codec::FrameSet Frames() const override {
        return {codec::FrameKind::kPages, static_cast<uint32_t>(pages_.size()), 0};
    }
    Result Decode(dib::ByteSource& source, uint32_t index, codec::PictureTarget& target,
                  codec::Progress& progress, uint32_t& duration) override {
        duration = 0;
        return DecodePage(source, pages_[index], target, progress);
    }

  private:
    std::vector<SafeFile::Page> pages_;
};

}  // namespace

bool WicDecoder::IsSupported(std::span<const uint8_t> header) const {
    try {
        return DecoderInstalled(DetectContainer(header));
    } catch (const ComFailure&) {
        return false;
    }
}

Result WicDecoder::ReadForm(dib::ByteSource& source, codec::PictureForm& form) const {
    codec::Progress nobody;
    return WithFrame(source, {}, nobody, [&](const FrameCopy& copy) {
        form = copy.Form();
        return Result::kSuccess;
    });
}

Result WicDecoder::Decode(dib::ByteSource& source, codec::PictureTarget& target,
                          codec::Progress& progress) const {
    return DecodePage(source, {}, target, progress);
}

std::unique_ptr<codec::FrameReader> WicDecoder::OpenFrames(dib::ByteSource& source) const {
    std::vector<SafeFile::Page> pages;
    const Container container = ContainerOf(source).value_or(Container::kUnknown);
    if (container == Container::kTiff) {
        for (const uint32_t directory : TiffPages(source))
            pages.push_back({.directory = directory});
    } else if (container == Container::kIcon || container == Container::kCursor) {
        const uint32_t count = CountIcons(source);
        for (uint32_t icon = 0; icon < count; ++icon)
            pages.push_back({.icon = icon});
    }
    return pages.size() < 2 ? nullptr : std::make_unique<WicPages>(std::move(pages));
}

}  // namespace tessary::wic
