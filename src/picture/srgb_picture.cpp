#include "picture/srgb_picture.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "picture/color/convert_rows.h"

namespace tessary {
namespace {

using color::Profile;

const Profile& Srgb() {
    static const Profile profile = Profile::Srgb();
    return profile;
}

std::vector<dib::PaletteEntry> ConvertedPalette(std::span<const dib::PaletteEntry> palette,
                                                const Profile& profile) {
    std::vector<dib::PaletteEntry> colors(palette.begin(), palette.end());
    // Of greys only equal samples make sense.
    const auto greys =
        profile.ModelOf() == color::Model::kGrey ? GreyColors(profile, Srgb()) : std::nullopt;
    const auto transform = color::Transform::Make(profile, Srgb(), color::Layout::kBgr8);
    for (dib::PaletteEntry& entry : colors) {
        color::Color color{entry.blue, entry.green, entry.red};
        if (greys) {
            color = (*greys)[entry.green];
        } else if (transform) {
            transform->Convert(color.data(), color.data(), 1);
        }
        entry = {color[0], color[1], color[2], entry.reserved};
    }
    return colors;
}

// Null where the pixels are none of three or four bytes, or the profile is of no use for them.
std::unique_ptr<const color::Transform> PixelTransform(const dib::DibView& view,
                                                       const Profile& profile) {
    switch (view.Format()) {
        case dib::PixelFormat::kBgr24:
            return color::Transform::Make(profile, Srgb(), color::Layout::kBgr8);
        case dib::PixelFormat::kBgrx32:
        case dib::PixelFormat::kBgra32:
            return color::Transform::Make(profile, Srgb(), color::Layout::kBgra8);
        default:
            return nullptr;
    }
}

// What is laid over another colour has to be converted before.
bool IsQuick(const Picture& picture) {
    if (picture.HasAlpha()) return false;
    const auto profile = Profile::FromIcc(picture.Profile());
    if (!profile || AreAlike(*profile, Srgb())) return false;
    const auto transform = PixelTransform(picture.View(), *profile);
    return transform && transform->IsQuick();
}

}  // namespace

bool IsSavableInOwnColors(const Picture& picture) {
    return picture && picture.View().Palette().empty() && !picture.HasAlpha() &&
           color::IsWellFormed(picture.Profile(), color::Model::kRgb);
}

Picture WithQuickProfile(Picture picture) {
    const bool hasProfile = picture && !picture.Profile().empty();
    return hasProfile && IsQuick(picture) ? std::move(picture) : SrgbPicture(std::move(picture));
}

Picture SrgbPicture(Picture picture) {
    if (!picture || picture.Profile().empty()) return picture;
    const auto profile = Profile::FromIcc(picture.Profile());
    picture.SetProfile({});
    if (!profile || AreAlike(*profile, Srgb())) return picture;
    const dib::DibView& view = picture.View();
    const auto palette = view.Palette();
    const auto transform = palette.empty() ? PixelTransform(view, *profile) : nullptr;
    if (palette.empty() && !transform) return picture;

    std::vector<uint8_t> info(picture.Info().begin(), picture.Info().end());
    if (!palette.empty()) {
        const auto colors = ConvertedPalette(palette, *profile);
        const auto at = reinterpret_cast<const uint8_t*>(palette.data()) - picture.Info().data();
        std::memcpy(info.data() + at, colors.data(), colors.size() * sizeof colors.front());
    }
    Picture converted = Picture::Make(info, [&](std::span<uint8_t> rows) {
        if (!transform) {
            std::ranges::copy(view.Bits(), rows.begin());
            return true;
        }
        const auto stride = static_cast<ptrdiff_t>(view.Stride());
        ConvertRows(*transform,
                    {view.Bits().data(), stride, rows.data(), stride,
                     static_cast<uint32_t>(view.Width()), static_cast<uint32_t>(view.Height())});
        return true;
    });
    return converted ? std::move(converted) : std::move(picture);
}

}  // namespace tessary
