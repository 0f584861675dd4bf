#include "helpers/color/color_transform.h"

#include <lcms2.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "helpers/color/ink_table.h"
#include "helpers/color/matrix_path.h"

namespace tessary::color {
namespace {

constexpr cmsUInt32Number kIntent = INTENT_RELATIVE_COLORIMETRIC;
constexpr cmsUInt32Number kFlags = cmsFLAGS_BLACKPOINTCOMPENSATION | cmsFLAGS_COPY_ALPHA;

struct FreeTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Handle = std::unique_ptr<void, FreeTransform>;

Handle MakeHandle(const Profile& from, cmsUInt32Number fromFormat, const Profile& to,
                  cmsUInt32Number toFormat, cmsUInt32Number moreFlags = 0) {
    return Handle(cmsCreateTransform(from.Handle(), fromFormat, to.Handle(), toFormat, kIntent,
                                     kFlags | moreFlags));
}

struct Format {
    cmsUInt32Number in;
    Model model;
};

Format FormatOf(Layout layout) {
    switch (layout) {
        case Layout::kBgr8:
            return {TYPE_BGR_8, Model::kRgb};
        case Layout::kBgra8:
            return {TYPE_BGRA_8, Model::kRgb};
        case Layout::kBgr16BigEndian:
            return {TYPE_BGR_16_SE, Model::kRgb};
        case Layout::kBgra16BigEndian:
            return {TYPE_BGRA_16_SE, Model::kRgb};
        case Layout::kRgb16:
            return {TYPE_RGB_16, Model::kRgb};
        case Layout::kCmyk8:
            return {TYPE_CMYK_8, Model::kCmyk};
        case Layout::kCmyk8Inverted:
            return {TYPE_CMYK_8_REV, Model::kCmyk};
    }
    return {};
}

// Little CMS, of whatever kind the profiles are.
class LibraryTransform final : public Transform {
  public:
    explicit LibraryTransform(Handle handle) : handle_(std::move(handle)) {}
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const override {
        cmsDoTransform(handle_.get(), in, out, static_cast<cmsUInt32Number>(pixels));
    }

  private:
    Handle handle_;
};

template <size_t kBytes>
class MatrixTransform final : public Transform {
  public:
    explicit MatrixTransform(std::unique_ptr<const MatrixPath> path) : path_(std::move(path)) {}
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const override {
        path_->Convert<kBytes>(in, out, pixels);
    }
    bool IsQuick() const override { return true; }

  private:
    std::unique_ptr<const MatrixPath> path_;
};

// The same of 16-bit samples, for which Little CMS has tables that are wide of the mark in dark and
// strong colours, or takes a second for a photograph.
class DeepMatrixTransform final : public Transform {
  public:
    DeepMatrixTransform(std::unique_ptr<const MatrixPath> path, Layout layout)
        : path_(std::move(path)), layout_(layout) {}
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const override {
        if (layout_ == Layout::kRgb16) {
            path_->ConvertDeep<3, false, true>(in, out, pixels);
        } else if (layout_ == Layout::kBgr16BigEndian) {
            path_->ConvertDeep<3, true, false>(in, out, pixels);
        } else {
            path_->ConvertDeep<4, true, false>(in, out, pixels);
        }
    }

  private:
    std::unique_ptr<const MatrixPath> path_;
    Layout layout_;
};

// Of inks, for which Little CMS takes twice as long with a table of its own.
class InkTransform final : public Transform {
  public:
    explicit InkTransform(InkTable table) : table_(std::move(table)) {}
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const override {
        table_.Convert(in, out, pixels);
    }

  private:
    InkTable table_;
};

// Null when the profiles' tables make no sense.
std::unique_ptr<const Transform> MakeInkTransform(const Profile& from, const Profile& to,
                                                  bool isInverted) {
    const Handle exact = MakeHandle(from, TYPE_CMYK_FLT, to, TYPE_BGR_FLT, cmsFLAGS_NOOPTIMIZE);
    if (!exact) return nullptr;
    std::vector<float> percent;
    return std::make_unique<InkTransform>(InkTable(
        [&](const float* inks, float* colors, size_t points) {
            percent.assign(inks, inks + points * 4);
            for (float& ink : percent)
                ink *= 100;
            cmsDoTransform(exact.get(), percent.data(), colors,
                           static_cast<cmsUInt32Number>(points));
        },
        isInverted));
}

constexpr bool IsDeep(Layout layout) {
    return layout == Layout::kBgr16BigEndian || layout == Layout::kBgra16BigEndian ||
           layout == Layout::kRgb16;
}

// Greys, the dark ones closest to each other, as there curves differ most; and colours from
// everywhere in the cube.
std::vector<Color> SampleColors() {
    std::vector<Color> colors;
    for (unsigned level = 0; level < 256; level += level < 32 ? 3 : 11) {
        const auto grey = static_cast<uint8_t>(level);
        colors.push_back({grey, grey, grey});
    }
    constexpr unsigned kSteps = 4;
    for (unsigned i = 0; i < kSteps * kSteps * kSteps; ++i) {
        const auto level = [](unsigned step) {
            return static_cast<uint8_t>(step % kSteps * 255 / (kSteps - 1));
        };
        colors.push_back({level(i), level(i / kSteps), level(i / kSteps / kSteps)});
    }
    return colors;
}

// As exactly as Little CMS can; null when it cannot.
std::optional<std::vector<Color>> ExactColors(const Profile& from, const Profile& to,
                                              std::vector<Color> colors) {
    const Handle handle = MakeHandle(from, TYPE_BGR_8, to, TYPE_BGR_8, cmsFLAGS_NOOPTIMIZE);
    if (!handle) return std::nullopt;
    cmsDoTransform(handle.get(), colors.data(), colors.data(),
                   static_cast<cmsUInt32Number>(colors.size()));
    return colors;
}

int LargestDifference(const std::vector<Color>& some, const std::vector<Color>& other) {
    int largest = 0;
    for (size_t i = 0; i < some.size(); ++i) {
        for (size_t channel = 0; channel < 3; ++channel) {
            largest = std::max(largest, std::abs(some[i][channel] - other[i][channel]));
        }
    }
    return largest;
}

// The short way, where it comes to the same colours.
std::unique_ptr<const MatrixPath> ProvenPath(const Profile& from, const Profile& to) {
    auto path = MatrixPath::Make(from, to);
    if (!path) return nullptr;
    std::vector<Color> colors = SampleColors();
    const auto exact = ExactColors(from, to, colors);
    auto* bytes = colors.front().data();
    path->Convert<sizeof(Color)>(bytes, bytes, colors.size());
    return exact && LargestDifference(colors, *exact) <= 1 ? std::move(path) : nullptr;
}

}  // namespace

std::unique_ptr<const Transform> Transform::Make(const Profile& from, const Profile& to,
                                                 Layout layout) {
    const Format format = FormatOf(layout);
    if (format.model != from.ModelOf() || to.ModelOf() != Model::kRgb) return nullptr;
    if (layout == Layout::kBgr8 || layout == Layout::kBgra8) {
        if (auto path = ProvenPath(from, to)) {
            if (layout == Layout::kBgra8) {
                return std::make_unique<MatrixTransform<4>>(std::move(path));
            }
            return std::make_unique<MatrixTransform<3>>(std::move(path));
        }
    }
    if (IsDeep(layout) && ProvenPath(from, to)) {
        if (auto path = MatrixPath::Make(from, to, MatrixPath::Depth::kDeep)) {
            return std::make_unique<DeepMatrixTransform>(std::move(path), layout);
        }
    }
    if (format.model == Model::kCmyk)
        return MakeInkTransform(from, to, layout == Layout::kCmyk8Inverted);
    Handle handle =
        MakeHandle(from, format.in, to, TargetBytesOf(layout) == 4 ? TYPE_BGRA_8 : TYPE_BGR_8);
    if (!handle) return nullptr;
    return std::make_unique<LibraryTransform>(std::move(handle));
}

bool AreAlike(const Profile& from, const Profile& to) {
    if (from.ModelOf() != Model::kRgb || to.ModelOf() != Model::kRgb) return false;
    const std::vector<Color> colors = SampleColors();
    const auto exact = ExactColors(from, to, colors);
    return exact && LargestDifference(colors, *exact) <= 1;
}

std::optional<std::array<Color, 256>> GreyColors(const Profile& from, const Profile& to) {
    if (from.ModelOf() == Model::kCmyk) return std::nullopt;
    const bool isGrey = from.ModelOf() == Model::kGrey;
    const Handle handle =
        MakeHandle(from, isGrey ? TYPE_GRAY_8 : TYPE_BGR_8, to, TYPE_BGR_8, cmsFLAGS_NOOPTIMIZE);
    if (!handle) return std::nullopt;
    std::array<Color, 256> colors;
    for (size_t i = 0; i < colors.size(); ++i) {
        Color level;
        level.fill(static_cast<uint8_t>(i));
        cmsDoTransform(handle.get(), level.data(), colors[i].data(), 1);
    }
    return colors;
}

std::vector<uint8_t> GreyLevels(const Profile& from, const Profile& to, bool areDeep) {
    if (from.ModelOf() != Model::kGrey) return {};
    const Handle handle = MakeHandle(from, TYPE_GRAY_16, to, TYPE_BGR_16, cmsFLAGS_NOOPTIMIZE);
    if (!handle) return {};
    const auto exact = [&](unsigned level) {
        const auto sample = static_cast<uint16_t>(std::min(level, 0xFFFFu));
        std::array<uint16_t, 3> color{};
        cmsDoTransform(handle.get(), &sample, color.data(), 1);
        return unsigned{color[1]};
    };
    const auto toByte = [](unsigned sample) {
        return static_cast<uint8_t>((sample * 255u + 0x7FFF) / 0xFFFF);
    };
    std::vector<uint8_t> levels;
    if (!areDeep) {
        for (unsigned level = 0; level < 256; ++level)
            levels.push_back(toByte(exact(level * 257)));
        return levels;
    }
    // Each sixteenth exactly, straight lines between them.
    constexpr unsigned kStep = 16;
    levels.reserve(0x10000);
    unsigned next = exact(0);
    for (unsigned level = 0; level <= 0xFFFF; level += kStep) {
        const unsigned here = std::exchange(next, exact(level + kStep));
        for (unsigned i = 0; i < kStep; ++i)
            levels.push_back(toByte((here * (kStep - i) + next * i) / kStep));
    }
    return levels;
}

}  // namespace tessary::color
