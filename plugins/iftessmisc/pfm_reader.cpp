#include "plugins/iftessmisc/pfm_reader.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "plugins/common/palette.h"
#include "plugins/iftessmisc/light.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

class PfmReader final : public PictureReader {
  public:
    PfmReader(dib::ByteSource& source, const NetpbmHeader& header)
        : source_(source), header_(header), input_(source, header.pixelOffset) {
        outline_.width = header.width;
        outline_.height = header.height;
        outline_.orientation = kBottomUp;
        outline_.pixels = header.depth == 3 ? Pixels::kBgr : Pixels::kIndexed;
        if (header.depth == 1) outline_.palette = codec::GreyPalette(8);
    }

    bool Prepare(codec::Progress& progress) override {
        ByteInput input(source_, header_.pixelOffset);
        float brightest = 0;
        for (uint32_t y = 0; y < header_.height; ++y) {
            if (!progress.Report(0, 1)) return false;
            const size_t samples = ReadSamples(input);
            for (size_t i = 0; i < samples; ++i)
                brightest = std::max(brightest, SampleAt(i));
            if (samples < size_t{header_.width} * header_.depth) break;
        }
        curve_ = LightCurve(brightest);
        return true;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        const size_t pixels = ReadSamples(input_) / header_.depth;
        for (size_t x = 0; x < pixels; ++x) {
            if (header_.depth == 1) {
                row[x] = curve_.Level(SampleAt(x));
            } else {
                curve_.Put({SampleAt(3 * x), SampleAt(3 * x + 1), SampleAt(3 * x + 2)},
                           row + 3 * x);
            }
        }
        return static_cast<uint32_t>(pixels);
    }

  private:
    size_t ReadSamples(ByteInput& input) {
        stored_.resize(static_cast<size_t>(std::min(header_.RowBytes(), source_.Size())));
        return input.Read(stored_) / 4;
    }
    float SampleAt(size_t index) const {
        const uint8_t* at = &stored_[index * 4];
        const float sample = std::bit_cast<float>(header_.scale < 0 ? Little32(at) : Big32(at));
        return UsableLight(sample * static_cast<float>(std::abs(header_.scale)));
    }

    dib::ByteSource& source_;
    const NetpbmHeader header_;
    ByteInput input_;
    LightCurve curve_{1};
    std::vector<uint8_t> stored_;
};

}  // namespace

std::unique_ptr<PictureReader> MakePfmReader(dib::ByteSource& source, const NetpbmHeader& header) {
    return std::make_unique<PfmReader>(source, header);
}

}  // namespace tessary::misc
