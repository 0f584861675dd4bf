#include "plugins/iftessjpeg/jpeg_decoder.h"

#include <array>

#include "helpers/dib/dib_view.h"
#include "plugins/common/inks.h"
#include "plugins/common/srgb.h"
#include "plugins/iftessjpeg/jpeg_reader.h"

namespace tessary::jpeg {

namespace {

using codec::Result;
using Pixels = JpegReader::Pixels;

codec::RowConversion ConversionOf(Pixels pixels, const std::optional<color::Profile>& profile,
                                  uint32_t width) {
    constexpr std::array kLayouts{color::Layout::kBgr8, color::Layout::kBgr8, color::Layout::kCmyk8,
                                  color::Layout::kCmyk8Inverted};
    const color::Layout layout = kLayouts[static_cast<size_t>(pixels)];
    codec::RowConversion conversion{static_cast<unsigned>(color::BytesOf(layout))};
    if (pixels == Pixels::kGrey) return conversion;  // its colour table says it all
    if (const auto transform = codec::ToSrgb(profile, layout)) {
        conversion.convert = [transform, width](const uint8_t* stored, uint8_t* shown) {
            transform->Convert(stored, shown, width);
        };
    } else if (pixels != Pixels::kBgr) {
        const bool inverted = pixels == Pixels::kInvertedInks;
        conversion.convert = [inverted, width](const uint8_t* stored, uint8_t* shown) {
            codec::InksToColors(stored, shown, width, inverted);
        };
    }
    return conversion;
}

}  // namespace

bool JpegDecoder::IsSupported(std::span<const uint8_t> header) const {
    return header.size() >= 3 && header[0] == 0xFF && header[1] == 0xD8 && header[2] == 0xFF;
}

Result JpegDecoder::ReadForm(dib::ByteSource& source, codec::PictureForm& form) const {
    codec::Progress nobody;
    JpegReader reader(source, nobody);
    const Result result = reader.ReadHeader();
    if (result == Result::kSuccess) form = reader.Form();
    return result;
}

Result JpegDecoder::Decode(dib::ByteSource& source, codec::PictureTarget& target,
                           codec::Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    JpegReader reader(source, progress);
    if (const Result result = reader.ReadHeader(); result != Result::kSuccess) return result;
    // However small it comes, all of the file has to be gone through.
    const codec::PictureForm whole = reader.Form();
    const uint64_t bits = dib::RowStride(whole.width, whole.bitCount) * uint64_t{whole.height};
    if (!codec::IsPlausibleSize(bits, source.Size())) return Result::kBrokenData;
    if (const Result result = reader.Reduce(target.Enough()); result != Result::kSuccess) {
        return result;
    }
    codec::PictureForm form = reader.Form();
    auto profile = reader.Colors();
    if (reader.StoredPixels() == Pixels::kBgr) {
        form.profile = codec::ProfileToHandOn(target, profile);
        if (!form.profile.empty()) profile.reset();
    }
    codec::PictureRows rows;
    const Result created = CreatePicture(
        target, form, codec::SrgbGreyPalette(profile, form.bitCount), source.Size(), rows);
    if (created != Result::kSuccess) return created;
    codec::OrientedRows oriented(
        {rows, reader.StoredWidth(), reader.StoredHeight(), form.bitCount / 8u,
         reader.Orientation()},
        ConversionOf(reader.StoredPixels(), profile, reader.StoredWidth()));
    return reader.DecodeRows(oriented);
}

}  // namespace tessary::jpeg
