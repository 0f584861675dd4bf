#include "plugins/iftesstiff/tiff_colors.h"

#include <algorithm>
#include <cstring>

#include "plugins/common/lab.h"
#include "plugins/common/palette.h"
#include "plugins/common/srgb.h"
#include "plugins/iftesstiff/tiff_samples.h"

namespace tessary::tiff {
namespace {

using color::Layout;

constexpr uint32_t kMost = 65535;

uint8_t ByteOf(uint16_t sample) {
    return static_cast<uint8_t>((sample * 255U + kMost / 2) / kMost);
}

void PutBigEndian(uint16_t sample, uint8_t* out) {
    out[0] = static_cast<uint8_t>(sample >> 8);
    out[1] = static_cast<uint8_t>(sample);
}

// What a sample of 16 bits is as a level of grey, by the profile where there is one.
std::vector<uint8_t> LevelsOf(const TiffForm& form) {
    std::vector<uint8_t> levels;
    if (form.profile) levels = codec::SrgbGreyLevels(*form.profile, true);
    if (levels.size() == kMost + 1) return levels;
    levels.resize(kMost + 1);
    for (uint32_t i = 0; i <= kMost; ++i)
        levels[i] = ByteOf(static_cast<uint16_t>(i));
    return levels;
}

}  // namespace

TiffColors::TiffColors(const TiffForm& form) : form_(form) {
    const bool isPacked = !form.isSeparate && form.sampleCount == 1 &&
                          form.sampleFormat == SAMPLEFORMAT_UINT && form.orientation == 1 &&
                          (form.sampleBits == 1 || form.sampleBits == 4);
    tableBits_ = isPacked ? form.sampleBits : uint16_t{8};
    if (form.model == Model::kTable) {
        table_ = form.table;
    } else if (form.model == Model::kGrey) {
        // By 16 bits the levels are in the pixels.
        const bool isDeep = !isPacked && !AreBytes();
        table_ = isDeep ? codec::GreyPalette(tableBits_)
                        : codec::SrgbGreyPalette(form.profile, tableBits_);
        if (form.isInverted && !isDeep) std::ranges::reverse(table_);
        if (isDeep || form.alpha != Alpha::kNone) levels_ = LevelsOf(form);
    }
}

codec::ColorPicture TiffColors::Picture() const {
    const bool hasAlpha = form_.alpha != Alpha::kNone;
    codec::ColorPicture picture{.width = form_.width,
                                .height = form_.height,
                                .orientation = form_.orientation,
                                .xPelsPerMeter = form_.xPelsPerMeter,
                                .yPelsPerMeter = form_.yPelsPerMeter,
                                .profile = form_.profile};
    switch (form_.model) {
        case Model::kInks:
            picture.layout = Layout::kCmyk8;
            break;
        case Model::kRgb:
            if (form_.sampleBits <= 8) {
                picture.layout = hasAlpha ? Layout::kBgra8 : Layout::kBgr8;
            } else {
                picture.layout = hasAlpha ? Layout::kBgra16BigEndian : Layout::kBgr16BigEndian;
            }
            break;
        case Model::kGrey:
            picture.layout = Layout::kBgra8;
            picture.profile.reset();
            break;
        case Model::kLab:
        case Model::kIccLab:
            picture.layout = hasAlpha ? Layout::kBgra8 : Layout::kBgr8;
            picture.profile.reset();
            break;
        case Model::kTable:
        case Model::kAsLibrary:
            picture.profile.reset();
            break;
    }
    return picture;
}

// The most common ones take the short way.
void TiffColors::PutRow(const TiffRows& rows, uint8_t* out) {
    if (HasTable()) return PutTableRow(rows, out);
    if (AreBytes() && !form_.isSeparate && form_.alpha != Alpha::kMultiplied) {
        if (form_.model == Model::kRgb) return PutPlainBytes(rows.Raw(), out);
        if (form_.model == Model::kInks && form_.sampleCount == 4) {
            std::memcpy(out, rows.Raw(), size_t{form_.width} * 4);
            return;
        }
    }
    Unpack(rows);
    switch (form_.model) {
        case Model::kRgb:
            return form_.sampleBits <= 8 ? PutBytes(out) : PutRgb(out);
        case Model::kGrey:
            return PutGreyWithAlpha(out);
        case Model::kInks:
            return PutInks(out);
        case Model::kLab:
        case Model::kIccLab:
            return PutLab(out);
        case Model::kTable:
            for (uint32_t x = 0; x < form_.width; ++x, out += 3) {
                const dib::PaletteEntry& color =
                    form_.table[samples_[size_t{x} * form_.sampleCount]];
                out[0] = color.blue;
                out[1] = color.green;
                out[2] = color.red;
            }
            return;
        case Model::kAsLibrary:
            return;  // has no rows of samples
    }
}

void TiffColors::Unpack(const TiffRows& rows) {
    const size_t count = form_.sampleCount;
    const size_t width = form_.width;
    samples_.resize(width * count);
    const auto unpack = [&](const uint8_t* raw, size_t number, uint16_t* out) {
        if (form_.model == Model::kTable) {
            UnpackIndexes(raw, number, form_.sampleBits, out);
        } else {
            UnpackSamples(raw, number, form_.sampleBits, form_.sampleFormat, out);
        }
    };
    if (!form_.isSeparate) return unpack(rows.Raw(), samples_.size(), samples_.data());
    plane_.resize(width);
    for (uint16_t sample = 0; sample < count; ++sample) {
        unpack(rows.Raw(sample), width, plane_.data());
        for (size_t x = 0; x < width; ++x)
            samples_[x * count + sample] = plane_[x];
    }
}

void TiffColors::PutTableRow(const TiffRows& rows, uint8_t* out) {
    const bool isAlone = form_.sampleCount == 1;
    if (isAlone && (tableBits_ < 8 || AreBytes())) {
        const size_t bits = size_t{form_.width} * tableBits_;
        std::memcpy(out, rows.Raw(), (bits + 7) / 8);
        // The padding of a row is zero.
        if (bits % 8 != 0) out[bits / 8] &= static_cast<uint8_t>(0xFF << (8 - bits % 8));
        return;
    }
    Unpack(rows);
    const uint16_t* sample = samples_.data();
    for (uint32_t x = 0; x < form_.width; ++x, sample += form_.sampleCount) {
        if (form_.model == Model::kTable) {
            out[x] = static_cast<uint8_t>(*sample);
        } else if (levels_.empty()) {
            out[x] = static_cast<uint8_t>(*sample >> 8);  // its table says it all
        } else {
            out[x] = levels_[form_.isInverted ? kMost - *sample : *sample];
        }
    }
}

uint16_t TiffColors::AlphaOf(const uint16_t* pixel) const {
    return form_.alpha == Alpha::kNone ? uint16_t{kMost} : pixel[form_.alphaSample];
}

// Not multiplied by alpha any more.
uint16_t TiffColors::ColorOf(const uint16_t* pixel, unsigned sample, uint16_t alpha) const {
    const uint32_t value = pixel[sample];
    if (form_.alpha != Alpha::kMultiplied || alpha == kMost) return static_cast<uint16_t>(value);
    if (alpha == 0) return 0;
    return static_cast<uint16_t>(std::min((value * kMost + alpha / 2) / alpha, kMost));
}

void TiffColors::PutPlainBytes(const uint8_t* pixel, uint8_t* out) const {
    const bool hasAlpha = form_.alpha != Alpha::kNone;
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount) {
        out[0] = pixel[2];
        out[1] = pixel[1];
        out[2] = pixel[0];
        out += 3;
        if (hasAlpha) *out++ = pixel[form_.alphaSample];
    }
}

void TiffColors::PutBytes(uint8_t* out) const {
    const uint16_t* pixel = samples_.data();
    const bool hasAlpha = form_.alpha != Alpha::kNone;
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount) {
        const uint16_t alpha = AlphaOf(pixel);
        for (unsigned i = 0; i < 3; ++i)
            *out++ = ByteOf(ColorOf(pixel, 2 - i, alpha));
        if (hasAlpha) *out++ = ByteOf(alpha);
    }
}

void TiffColors::PutRgb(uint8_t* out) const {
    const uint16_t* pixel = samples_.data();
    const bool hasAlpha = form_.alpha != Alpha::kNone;
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount) {
        const uint16_t alpha = AlphaOf(pixel);
        for (unsigned i = 0; i < 3; ++i, out += 2)
            PutBigEndian(ColorOf(pixel, 2 - i, alpha), out);
        if (!hasAlpha) continue;
        PutBigEndian(alpha, out);
        out += 2;
    }
}

void TiffColors::PutGreyWithAlpha(uint8_t* out) const {
    const uint16_t* pixel = samples_.data();
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount, out += 4) {
        const uint16_t alpha = AlphaOf(pixel);
        const uint16_t grey = ColorOf(pixel, 0, alpha);
        out[0] = out[1] = out[2] = levels_[form_.isInverted ? kMost - grey : grey];
        out[3] = ByteOf(alpha);
    }
}

void TiffColors::PutInks(uint8_t* out) const {
    const uint16_t* pixel = samples_.data();
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount) {
        for (unsigned i = 0; i < 4; ++i)
            *out++ = ByteOf(pixel[i]);
    }
}

// UnpackSamples has moved signed numbers up by half of their range where the file says that they
// are signed; where it does not, they are all the same.
void TiffColors::PutLab(uint8_t* out) const {
    const bool isMoved = form_.model == Model::kIccLab || form_.sampleFormat == SAMPLEFORMAT_INT;
    const auto side = [&](uint16_t sample) {
        const uint16_t moved = isMoved ? sample : static_cast<uint16_t>(sample ^ 0x8000);
        return form_.sampleBits == 8 ? static_cast<float>(ByteOf(moved)) - 128
                                     : static_cast<float>(moved) / 256 - 128;
    };
    const uint16_t* pixel = samples_.data();
    const bool hasAlpha = form_.alpha != Alpha::kNone;
    const bool isSigned = form_.sampleFormat == SAMPLEFORMAT_INT;
    for (uint32_t x = 0; x < form_.width; ++x, pixel += form_.sampleCount) {
        const auto light = static_cast<uint16_t>(isSigned ? pixel[0] ^ 0x8000 : pixel[0]);
        const auto color = codec::LabToSrgb(static_cast<float>(light) * 100 / kMost, side(pixel[1]),
                                            side(pixel[2]));
        out = std::copy(color.begin(), color.end(), out);
        if (hasAlpha) *out++ = ByteOf(AlphaOf(pixel));
    }
}

}  // namespace tessary::tiff
