#include "plugins/common/srgb.h"

#include <algorithm>
#include <mutex>

#include "plugins/common/palette.h"

namespace tessary::codec {
namespace {

const color::Profile& Srgb() {
    static const color::Profile profile = color::Profile::Srgb();
    return profile;
}

using Way = std::shared_ptr<const color::Transform>;

Way MakeWay(const color::Profile& profile, color::Layout layout) {
    return AreAlike(profile, Srgb()) ? nullptr : color::Transform::Make(profile, Srgb(), layout);
}

// The ways of the last profiles: pictures of one camera or one scanner have the same one, and
// making a way takes as long as decoding a small picture. Of any thread.
class LastWays {
  public:
    Way For(const color::Profile& profile, color::Layout layout) {
        const auto icc = profile.Source();
        if (icc.empty()) return MakeWay(profile, layout);
        {
            const std::lock_guard lock(mutex_);
            const auto known = std::ranges::find_if(ways_, [&](const Known& each) {
                return each.layout == layout && std::ranges::equal(each.profile.Source(), icc);
            });
            if (known != ways_.end()) return known->way;
        }
        Way way = MakeWay(profile, layout);
        const std::lock_guard lock(mutex_);
        if (ways_.size() == kMost) ways_.pop_back();
        ways_.insert(ways_.begin(), {profile, layout, way});
        return way;
    }

  private:
    struct Known {
        color::Profile profile;
        color::Layout layout;
        Way way;
    };
    static constexpr size_t kMost = 4;

    std::mutex mutex_;
    std::vector<Known> ways_;  // the latest first
};

}  // namespace

std::shared_ptr<const color::Transform> ToSrgb(const std::optional<color::Profile>& profile,
                                               color::Layout layout) {
    static LastWays ways;
    return profile ? ways.For(*profile, layout) : nullptr;
}

std::vector<uint8_t> ProfileToHandOn(const PictureTarget& target,
                                     const std::optional<color::Profile>& profile) {
    if (!target.TakesProfile() || !profile) return {};
    const auto way = ToSrgb(profile, color::Layout::kBgr8);
    if (!way || !way->IsQuick()) return {};
    const auto icc = profile->Source();
    return icc.empty() ? profile->Icc() : std::vector<uint8_t>(icc.begin(), icc.end());
}

std::vector<dib::PaletteEntry> SrgbGreyPalette(const std::optional<color::Profile>& profile,
                                               unsigned bitCount) {
    std::vector<dib::PaletteEntry> palette = GreyPalette(bitCount);
    if (palette.empty() || !profile) return palette;
    const auto colors = GreyColors(*profile, Srgb());
    if (!colors) return palette;
    for (dib::PaletteEntry& entry : palette) {
        const color::Color& color = (*colors)[entry.green];
        entry = {color[0], color[1], color[2], 0};
    }
    return palette;
}

std::vector<uint8_t> SrgbGreyLevels(const color::Profile& profile, bool areDeep) {
    return GreyLevels(profile, Srgb(), areDeep);
}

void ConvertColors(const color::Transform& transform, std::span<dib::PaletteEntry> colors) {
    for (dib::PaletteEntry& entry : colors) {
        color::Color color{entry.blue, entry.green, entry.red};
        transform.Convert(color.data(), color.data(), 1);
        entry = {color[0], color[1], color[2], 0};
    }
}

}  // namespace tessary::codec
