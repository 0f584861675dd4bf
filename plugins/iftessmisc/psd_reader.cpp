// The composites of Photoshop files, PSD and PSB.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <memory>

#include "plugins/common/inks.h"
#include "plugins/common/lab.h"
#include "plugins/common/palette.h"
#include "plugins/common/srgb.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/light.h"
#include "plugins/iftessmisc/psd_planes.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

// A sample that was laid over white as it was before.
uint8_t WithoutWhite(unsigned sample, unsigned alpha) {
    if (alpha == 0) return static_cast<uint8_t>(sample);
    const int over = static_cast<int>(sample) + static_cast<int>(alpha) - 255;
    return static_cast<uint8_t>(std::clamp<int>(
        (over * 255 + static_cast<int>(alpha) / 2) / static_cast<int>(alpha), 0, 255));
}

class PsdReader final : public PictureReader {
  public:
    PsdReader(dib::ByteSource& source, PsdFile file, PsdPacking packing)
        : source_(source),
          file_(std::move(file)),
          packing_(packing),
          colors_(file_.Colors()),
          hasAlpha_(file_.HasAlpha()),
          planes_(source, file_, packing, colors_ + (hasAlpha_ ? 1 : 0)) {
        outline_.width = file_.width;
        outline_.height = file_.height;
        outline_.xPelsPerMeter = file_.xPelsPerMeter;
        outline_.yPelsPerMeter = file_.yPelsPerMeter;
        if (colors_ >= 3) {
            SetColors();
        } else if (file_.mode == PsdMode::kIndexed) {
            SetTable();
        } else {
            SetGreys();
        }
    }

    bool Prepare(codec::Progress& progress) override {
        const bool isLight = file_.depth == 32;
        if (!isLight && !hasAlpha_) return true;
        PsdPlanes all(source_, file_, packing_, Planes());
        float brightest = 0;
        for (uint32_t y = 0; y < file_.height; ++y) {
            if (!progress.Report(0, 1)) return false;
            size_t least = SIZE_MAX;
            for (unsigned i = 0; i < Planes(); ++i)
                least = std::min(least, ReadPlane(all, i));
            if (isLight) brightest = std::max(brightest, BrightestOfRow());
            if (hasAlpha_ && least == file_.RowBytes())
                isOverWhite_ = isOverWhite_ && MayBeOverWhite();
            if (!isLight && !isOverWhite_) break;
        }
        curve_ = LightCurve(brightest);
        return true;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        bool isThere = false;
        for (unsigned i = 0; i < Planes(); ++i) {
            const size_t got = ReadPlane(planes_, i);
            isThere = isThere || got != 0;
            isDamaged_ = isDamaged_ || got < file_.RowBytes();
        }
        hasPixels_ = hasPixels_ || isThere;
        if (!isThere && !(hasPixels_ && packing_ == PsdPacking::kRuns)) return 0;
        if (colors_ == 1) {
            PutTable(row);
        } else if (AreInks()) {
            PutInks(row);
        } else if (file_.mode == PsdMode::kLab) {
            PutLab(row);
        } else if (file_.depth == 32) {
            PutLight(row);
        } else {
            PutRgb(row);
        }
        return file_.width;
    }

  private:
    bool AreInks() const { return colors_ == 4; }
    unsigned Planes() const { return colors_ + (hasAlpha_ ? 1 : 0); }

    // A row of a channel into its place; how many bytes of it there are.
    size_t ReadPlane(PsdPlanes& planes, unsigned channel) {
        std::vector<uint8_t>& samples = rows_[channel];
        samples.resize(static_cast<size_t>(file_.RowBytes()));
        const size_t got = planes.ReadRow(channel, samples);
        // Nothing of an ink, and all of the alpha.
        const bool isFull = AreInks() || channel == colors_;
        std::fill(samples.begin() + static_cast<ptrdiff_t>(got), samples.end(),
                  isFull ? uint8_t{0xFF} : uint8_t{0});
        return got;
    }

    float BrightestOfRow() const {
        float brightest = 0;
        for (unsigned i = 0; i < colors_; ++i) {
            for (size_t x = 0; x < file_.width; ++x)
                brightest = std::max(brightest, UsableLight(FloatAt(i, x)));
        }
        return brightest;
    }

    // Photoshop has laid the row over white, so no sample is darker than what shines through. Other
    // programs leave colours as they are.
    bool MayBeOverWhite() const {
        constexpr int kRounding = 2;
        if (file_.mode == PsdMode::kLab) return false;
        for (unsigned i = 0; i < colors_; ++i) {
            for (size_t x = 0; x < file_.width; ++x) {
                const bool isDarker = file_.depth == 32
                                          ? FloatAt(i, x) + FloatAt(colors_, x) < 0.99f
                                          : SampleAt(i, x) + SampleAt(colors_, x) + kRounding < 255;
                if (isDarker) return false;
            }
        }
        return true;
    }

    void SetColors() {
        const bool isRgb = !AreInks() && file_.mode != PsdMode::kLab;
        if (isRgb && file_.depth == 16) {
            outline_.pixels = hasAlpha_ ? Pixels::kBgra16 : Pixels::kBgr16;
        } else {
            outline_.pixels = hasAlpha_ ? Pixels::kBgra : Pixels::kBgr;
        }
        if (isRgb && file_.depth != 32 && file_.profile &&
            file_.profile->ModelOf() == color::Model::kRgb) {
            outline_.profile = file_.profile;
        }
        if (AreInks() && file_.profile && file_.profile->ModelOf() == color::Model::kCmyk) {
            toSrgb_ = codec::ToSrgb(file_.profile, color::Layout::kCmyk8Inverted);
        }
    }

    void SetTable() {
        outline_.pixels = Pixels::kIndexed;
        for (size_t i = 0; i < 256; ++i) {
            outline_.palette.push_back(
                {file_.colorTable[512 + i], file_.colorTable[256 + i], file_.colorTable[i], 0});
        }
        if (file_.profile && file_.profile->ModelOf() == color::Model::kRgb) {
            const auto toSrgb = codec::ToSrgb(file_.profile, color::Layout::kBgr8);
            if (toSrgb) codec::ConvertColors(*toSrgb, outline_.palette);
        }
        if (file_.clearIndex && *file_.clearIndex < 256) {
            outline_.paletteAlpha.assign(256, 0xFF);
            outline_.paletteAlpha[*file_.clearIndex] = 0;
        }
    }

    void SetGreys() {
        if (file_.depth == 1) {
            outline_.pixels = Pixels::kIndexed;
            outline_.tableBits = 1;
            outline_.palette = {{0xFF, 0xFF, 0xFF, 0}, {0, 0, 0, 0}};
            return;
        }
        const bool isProfiled = file_.depth != 32 && file_.profile &&
                                file_.mode == PsdMode::kGrey &&
                                file_.profile->ModelOf() == color::Model::kGrey;
        if (hasAlpha_) {
            outline_.pixels = Pixels::kGreyAlpha;
            if (isProfiled) greys_ = codec::SrgbGreyLevels(*file_.profile, false);
            return;
        }
        outline_.pixels = Pixels::kIndexed;
        outline_.palette = codec::SrgbGreyPalette(isProfiled ? file_.profile : std::nullopt, 8);
    }

    // In 8 bits; not of floating-point samples.
    uint8_t SampleAt(unsigned channel, size_t x) const {
        const uint8_t* samples = rows_[channel].data();
        return file_.depth == 16 ? Scaled(Big16(samples + 2 * x), 0xFFFF) : samples[x];
    }
    float FloatAt(unsigned channel, size_t x) const {
        return std::bit_cast<float>(Big32(&rows_[channel][4 * x]));
    }
    uint8_t AlphaAt(size_t x) const {
        if (file_.depth != 32) return SampleAt(colors_, x);
        return static_cast<uint8_t>(
            std::lround(std::min(UsableLight(FloatAt(colors_, x)), 1.0f) * 255));
    }

    uint8_t Unmixed(uint8_t sample, unsigned alpha) const {
        return isOverWhite_ ? WithoutWhite(sample, alpha) : sample;
    }

    void PutTable(uint8_t* row) const {
        for (size_t x = 0; x < file_.width; ++x) {
            if (file_.depth == 1) {
                *row++ = rows_[0][x / 8] >> (7 - x % 8) & 1;
                continue;
            }
            uint8_t level = file_.depth == 32 ? curve_.Level(FloatAt(0, x)) : SampleAt(0, x);
            if (!hasAlpha_ || outline_.pixels == Pixels::kIndexed) {
                *row++ = level;
                continue;
            }
            const uint8_t alpha = AlphaAt(x);
            level = Unmixed(level, alpha);
            *row++ = greys_.empty() ? level : greys_[level];
            *row++ = alpha;
        }
    }

    void PutRgb(uint8_t* row) const {
        const bool isDeep = file_.depth == 16;
        for (size_t x = 0; x < file_.width; ++x) {
            const unsigned alpha = hasAlpha_ ? AlphaAt(x) : 255u;
            for (unsigned i = 3; i-- > 0;) {
                if (isDeep && (alpha == 255 || !isOverWhite_)) {
                    *row++ = rows_[i][2 * x];
                    *row++ = rows_[i][2 * x + 1];
                    continue;
                }
                const uint8_t sample = Unmixed(SampleAt(i, x), alpha);
                *row++ = sample;
                if (isDeep) *row++ = sample;
            }
            if (!hasAlpha_) continue;
            *row++ = static_cast<uint8_t>(alpha);
            if (isDeep) *row++ = static_cast<uint8_t>(alpha);
        }
    }

    void PutLight(uint8_t* row) const {
        for (size_t x = 0; x < file_.width; ++x) {
            const float alpha = hasAlpha_ ? std::min(UsableLight(FloatAt(3, x)), 1.0f) : 1;
            std::array<float, 3> light{FloatAt(0, x), FloatAt(1, x), FloatAt(2, x)};
            if (isOverWhite_ && alpha > 0 && alpha < 1) {
                for (float& each : light)
                    each = (each - (1 - alpha)) / alpha;
            }
            curve_.Put(light, row);
            row += 3;
            if (hasAlpha_) *row++ = AlphaAt(x);
        }
    }

    // Stored is what is left of the light: full ink is 0.
    void PutInks(uint8_t* row) {
        const size_t width = file_.width;
        inks_.resize(width * 4);
        for (size_t x = 0; x < width; ++x) {
            const unsigned alpha = hasAlpha_ ? AlphaAt(x) : 255u;
            for (unsigned i = 0; i < 4; ++i)
                inks_[4 * x + i] = Unmixed(SampleAt(i, x), alpha);
        }
        if (hasAlpha_) bgr_.resize(width * 3);
        uint8_t* const bgr = hasAlpha_ ? bgr_.data() : row;
        if (toSrgb_) {
            toSrgb_->Convert(inks_.data(), bgr, width);
        } else {
            codec::InksToColors(inks_.data(), bgr, width, true);
        }
        for (size_t x = 0; hasAlpha_ && x < width; ++x, row += 4) {
            std::copy_n(bgr + 3 * x, 3, row);
            row[3] = AlphaAt(x);
        }
    }

    void PutLab(uint8_t* row) const {
        for (size_t x = 0; x < file_.width; ++x) {
            std::array<float, 3> lab{};
            for (unsigned i = 0; i < 3; ++i) {
                const float sample = file_.depth == 16
                                         ? static_cast<float>(Big16(&rows_[i][2 * x])) / 257
                                         : static_cast<float>(rows_[i][x]);
                lab[i] = i == 0 ? sample * 100 / 255 : sample - 128;
            }
            std::ranges::copy(codec::LabToSrgb(lab[0], lab[1], lab[2]), row);
            row += 3;
            if (hasAlpha_) *row++ = AlphaAt(x);
        }
    }

    dib::ByteSource& source_;
    const PsdFile file_;
    const PsdPacking packing_;
    const unsigned colors_;
    const bool hasAlpha_;
    PsdPlanes planes_;
    std::array<std::vector<uint8_t>, 5> rows_;        // of the channels
    std::shared_ptr<const color::Transform> toSrgb_;  // of inks
    std::vector<uint8_t> inks_, bgr_;
    std::vector<uint8_t> greys_;  // of levels; empty: themselves
    LightCurve curve_{1};
    bool isOverWhite_ = true;  // what is transparent
    bool hasPixels_ = false;
};

// Whether there is such a thing.
bool IsKnown(const PsdFile& file) {
    switch (file.mode) {
        case PsdMode::kBitmap:
            return file.depth == 1;
        case PsdMode::kIndexed:
            return file.depth == 8;
        case PsdMode::kGrey:
        case PsdMode::kRgb:
            return file.depth == 8 || file.depth == 16 || file.depth == 32;
        case PsdMode::kCmyk:
        case PsdMode::kMultichannel:
        case PsdMode::kDuotone:
        case PsdMode::kLab:
            return file.depth == 8 || file.depth == 16;
    }
    return false;
}

Result OpenPsd(dib::ByteSource& source, codec::Progress& progress,
               std::unique_ptr<PictureReader>& reader) {
    std::optional<PsdFile> file = ReadPsd(source);
    if (!file) return Result::kBrokenData;
    if (!IsKnown(*file)) return NotRead(progress, L"この種類のPSDには対応していません");
    if (file->channels < file->Colors()) return Result::kBrokenData;
    if (!file->hasComposite) {
        return NotRead(progress,
                       L"合成画像のないPSDです（互換性を優先して保存すると表示できます）");
    }
    std::array<uint8_t, 2> packing{};
    if (source.ReadAt(file->pixelOffset, packing).value_or(0) != packing.size()) {
        return Result::kBrokenData;
    }
    if (Big16(packing.data()) > 1) {
        return NotRead(progress, L"この圧縮方法のPSDには対応していません");
    }
    reader = std::make_unique<PsdReader>(source, *std::move(file),
                                         static_cast<PsdPacking>(Big16(packing.data())));
    return Result::kSuccess;
}

}  // namespace

constinit const Format kPsd{L"PSD", IsPsd, OpenPsd};

}  // namespace tessary::misc
