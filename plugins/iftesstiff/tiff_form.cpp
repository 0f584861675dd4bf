#include "plugins/iftesstiff/tiff_form.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "plugins/common/exif.h"
#include "plugins/common/palette.h"

namespace tessary::tiff {
namespace {

using codec::Result;

// Files of 8-bit numbers in the entries for 16 bits: some programs have written such.
bool AreBytes(const uint16_t* red, const uint16_t* green, const uint16_t* blue, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (red[i] > 0xFF || green[i] > 0xFF || blue[i] > 0xFF) return false;
    }
    return true;
}

std::vector<dib::PaletteEntry> TableOf(const TiffFile& file, uint16_t bits) {
    uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
    if (TIFFGetField(file.Handle(), TIFFTAG_COLORMAP, &red, &green, &blue) == 0) return {};
    const size_t count = size_t{1} << bits;
    const unsigned part = AreBytes(red, green, blue, count) ? 1 : 257;
    std::vector<dib::PaletteEntry> table(count);
    const auto level = [part](uint16_t stored) {
        return static_cast<uint8_t>((stored + part / 2) / part);
    };
    for (size_t i = 0; i < count; ++i)
        table[i] = {level(blue[i]), level(green[i]), level(red[i]), 0};
    return table;
}

std::optional<color::Profile> ProfileOf(const TiffFile& file, Model model) {
    uint32_t size = 0;
    void* bytes = nullptr;
    if (TIFFGetField(file.Handle(), TIFFTAG_ICCPROFILE, &size, &bytes) == 0) return std::nullopt;
    auto profile = color::Profile::FromIcc({static_cast<const uint8_t*>(bytes), size});
    const color::Model wanted = model == Model::kGrey   ? color::Model::kGrey
                                : model == Model::kInks ? color::Model::kCmyk
                                                        : color::Model::kRgb;
    return profile && profile->ModelOf() == wanted ? profile : std::nullopt;
}

void ReadResolution(const TiffFile& file, TiffForm& form) {
    const uint16_t unit = file.Short(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (unit == RESUNIT_NONE) return;
    const auto toPels = unit == RESUNIT_CENTIMETER ? codec::PelsPerMeterFromCentimetre
                                                   : codec::PelsPerMeterFromInch;
    form.xPelsPerMeter = toPels(file.Float(TIFFTAG_XRESOLUTION));
    form.yPelsPerMeter = toPels(file.Float(TIFFTAG_YRESOLUTION));
}

// The first sample behind the shown ones that is said to be alpha. One of no said meaning is none:
// what it hides would be gone.
void ReadAlpha(const TiffFile& file, TiffForm& form) {
    uint16_t count = 0;
    uint16_t* kinds = nullptr;
    if (TIFFGetFieldDefaulted(file.Handle(), TIFFTAG_EXTRASAMPLES, &count, &kinds) == 0) return;
    for (uint16_t i = 0; i < count && i < form.sampleCount; ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA) continue;
        form.alphaSample = static_cast<uint16_t>(form.sampleCount - count + i);
        if (form.alphaSample < form.ShownSamples() || form.alphaSample >= form.sampleCount) return;
        form.alpha = kinds[i] == EXTRASAMPLE_ASSOCALPHA ? Alpha::kMultiplied : Alpha::kPlain;
        return;
    }
}

// JPEG data become colours where they are unpacked; the library knows the other kinds.
Model ModelOfYCbCr(const TiffFile& file) {
    if (file.Short(TIFFTAG_COMPRESSION) != COMPRESSION_JPEG) return Model::kAsLibrary;
    TIFFSetField(file.Handle(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    return Model::kRgb;
}

// Where nothing is said, what the count of samples suggests.
uint16_t PhotometricOf(const TiffFile& file, uint16_t samples) {
    uint16_t stored = 0;
    if (TIFFGetField(file.Handle(), TIFFTAG_PHOTOMETRIC, &stored) != 0) return stored;
    return samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
}

std::optional<Model> ModelOf(const TiffFile& file, uint16_t photometric) {
    switch (photometric) {
        case PHOTOMETRIC_MINISWHITE:
        case PHOTOMETRIC_MINISBLACK:
        case PHOTOMETRIC_MASK:
            return Model::kGrey;
        case PHOTOMETRIC_PALETTE:
            return Model::kTable;
        case PHOTOMETRIC_RGB:
            return Model::kRgb;
        case PHOTOMETRIC_SEPARATED:
            return Model::kInks;
        case PHOTOMETRIC_YCBCR:
            return ModelOfYCbCr(file);
        case PHOTOMETRIC_CIELAB:
            return Model::kLab;
        case PHOTOMETRIC_ICCLAB:
            return Model::kIccLab;
        case PHOTOMETRIC_LOGL:
        case PHOTOMETRIC_LOGLUV:
            return Model::kAsLibrary;
        default:
            return std::nullopt;
    }
}

bool AreReadable(uint16_t bits, uint16_t format) {
    if (format == SAMPLEFORMAT_IEEEFP) return bits == 16 || bits == 24 || bits == 32 || bits == 64;
    return bits >= 1 && (bits <= 16 || bits == 24 || bits == 32 || bits == 64);
}

}  // namespace

uint16_t TiffForm::ShownSamples() const {
    switch (model) {
        case Model::kGrey:
        case Model::kTable:
            return 1;
        case Model::kInks:
            return 4;
        default:
            return 3;
    }
}

bool TiffForm::HasTable() const {
    return (model == Model::kTable && sampleBits <= 8) ||
           (model == Model::kGrey && alpha == Alpha::kNone);
}

Result ReadForm(const TiffFile& file, TiffForm& form, const wchar_t*& reason) {
    reason = nullptr;
    form = {};
    form.width = file.Long(TIFFTAG_IMAGEWIDTH);
    form.height = file.Long(TIFFTAG_IMAGELENGTH);
    if (form.width == 0 || form.height == 0) return Result::kBrokenData;
    if (TIFFIsCODECConfigured(file.Short(TIFFTAG_COMPRESSION, COMPRESSION_NONE)) == 0) {
        reason = L"このTIFFの圧縮方式は読めません";
        return Result::kUnknownFormat;
    }
    form.sampleBits = file.Short(TIFFTAG_BITSPERSAMPLE, 1);
    form.sampleCount = std::max<uint16_t>(file.Short(TIFFTAG_SAMPLESPERPIXEL, 1), 1);
    form.sampleFormat = file.Short(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (form.sampleFormat == SAMPLEFORMAT_VOID) form.sampleFormat = SAMPLEFORMAT_UINT;
    form.isSeparate =
        form.sampleCount > 1 && file.Short(TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    form.orientation = file.Short(TIFFTAG_ORIENTATION, 1);
    ReadResolution(file, form);
    const uint16_t photometric = PhotometricOf(file, form.sampleCount);
    const std::optional<Model> model = ModelOf(file, photometric);
    const bool isComplex = form.sampleFormat != SAMPLEFORMAT_UINT &&
                           form.sampleFormat != SAMPLEFORMAT_INT &&
                           form.sampleFormat != SAMPLEFORMAT_IEEEFP;
    if (!model || isComplex) {
        reason = L"この種類のTIFFは読めません";
        return Result::kUnknownFormat;
    }
    form.model = *model;
    form.isInverted = photometric == PHOTOMETRIC_MINISWHITE;
    form.profile = ProfileOf(file, form.model);
    if (form.model == Model::kAsLibrary) return Result::kSuccess;
    const bool isIndex = form.model == Model::kTable;
    if (!AreReadable(form.sampleBits, form.sampleFormat) || (isIndex && form.sampleBits > 16)) {
        reason = L"このTIFFの色の深さは読めません";
        return Result::kUnknownFormat;
    }
    if (form.sampleCount < form.ShownSamples()) return Result::kBrokenData;
    ReadAlpha(file, form);
    if (isIndex) {
        form.table = TableOf(file, form.sampleBits);
        if (form.table.empty()) return Result::kBrokenData;
    }
    return Result::kSuccess;
}

}  // namespace tessary::tiff
