#include "helpers/color/color_profile.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <new>

namespace tessary::color {
namespace {

constexpr double kAdobeGamma = 563 / 256.0;
constexpr size_t kLongestName = 255;  // characters

std::optional<Model> ModelOfSpace(cmsColorSpaceSignature space) {
    switch (space) {
        case cmsSigGrayData:
            return Model::kGrey;
        case cmsSigRgbData:
            return Model::kRgb;
        case cmsSigCmykData:
            return Model::kCmyk;
        default:
            return std::nullopt;
    }
}

bool DescribesPixels(cmsProfileClassSignature kind) {
    return kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
           kind == cmsSigColorSpaceClass;
}

struct FreeCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurve = std::unique_ptr<cmsToneCurve, FreeCurve>;

ToneCurve MakeCurve(Curve curve) {
    if (!curve.isSrgb) return ToneCurve(cmsBuildGamma(nullptr, curve.gamma));
    // IEC 61966-2-1: a straight line near black.
    constexpr std::array<cmsFloat64Number, 5> kSrgb{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92,
                                                    0.04045};
    return ToneCurve(cmsBuildParametricToneCurve(nullptr, 4, kSrgb.data()));
}

bool MakesSense(Curve curve) {
    return curve.isSrgb || (curve.gamma >= 0.1 && curve.gamma <= 10);
}

bool MakesSense(const Chromaticity& point) {
    return point.x >= 0 && point.x <= 1 && point.y > 0 && point.y <= 1;
}

cmsCIExyY Point(const Chromaticity& point) {
    return {point.x, point.y, 1};
}

// Of the header, and of an entry of the table behind it, in bytes.
constexpr size_t kHeader = 128;
constexpr size_t kTag = 12;

uint32_t NumberAt(std::span<const uint8_t> bytes, size_t at) {
    return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 |
           uint32_t{bytes[at + 2]} << 8 | bytes[at + 3];
}

}  // namespace

bool IsWellFormed(std::span<const uint8_t> icc, Model model) {
    constexpr size_t kVersion = 8, kClass = 12, kSpace = 16, kConnection = 20, kMark = 36,
                     kIntent = 64, kTags = kHeader + 4;
    if (icc.size() < kTags || icc.size() > kLargestProfile || NumberAt(icc, 0) != icc.size())
        return false;
    const uint32_t connection = NumberAt(icc, kConnection);
    const size_t count = NumberAt(icc, kHeader);
    if ((icc[kVersion] >= 4 && icc.size() % 4 != 0) || NumberAt(icc, kMark) != cmsMagicNumber ||
        ModelOfSpace(static_cast<cmsColorSpaceSignature>(NumberAt(icc, kSpace))) != model ||
        !DescribesPixels(static_cast<cmsProfileClassSignature>(NumberAt(icc, kClass))) ||
        (connection != cmsSigXYZData && connection != cmsSigLabData) ||
        NumberAt(icc, kIntent) > INTENT_ABSOLUTE_COLORIMETRIC ||
        count > (icc.size() - kTags) / kTag)
        return false;
    for (size_t i = 0; i < count; ++i) {
        const size_t at = NumberAt(icc, kTags + i * kTag + 4);
        if (at > icc.size() || NumberAt(icc, kTags + i * kTag + 8) > icc.size() - at) return false;
    }
    return true;
}

Profile::Profile(void* handle, Model model) : handle_(handle, cmsCloseProfile), model_(model) {}

std::optional<Profile> Profile::FromIcc(std::span<const uint8_t> icc) {
    if (icc.size() > kLargestProfile) return std::nullopt;
    const cmsHPROFILE handle =
        cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size()));
    if (handle == nullptr) return std::nullopt;
    Profile profile(handle, Model::kRgb);
    const auto model = ModelOfSpace(cmsGetColorSpace(handle));
    if (!model || !DescribesPixels(cmsGetDeviceClass(handle))) return std::nullopt;
    profile.model_ = *model;
    profile.source_ = std::make_shared<const std::vector<uint8_t>>(icc.begin(), icc.end());
    return profile;
}

Profile Profile::Srgb() {
    const cmsHPROFILE handle = cmsCreate_sRGBProfile();
    if (handle == nullptr) throw std::bad_alloc();
    return {handle, Model::kRgb};
}

std::optional<Profile> Profile::FromPrimaries(const Primaries& primaries, Curve curve) {
    for (const Chromaticity& point :
         {primaries.white, primaries.red, primaries.green, primaries.blue}) {
        if (!MakesSense(point)) return std::nullopt;
    }
    if (!MakesSense(curve)) return std::nullopt;
    const ToneCurve light = MakeCurve(curve);
    if (!light) throw std::bad_alloc();
    cmsToneCurve* const curves[3] = {light.get(), light.get(), light.get()};
    const cmsCIExyY white = Point(primaries.white);
    const cmsCIExyYTRIPLE colors{Point(primaries.red), Point(primaries.green),
                                 Point(primaries.blue)};
    // Null as well where the points span no colours.
    const cmsHPROFILE handle = cmsCreateRGBProfile(&white, &colors, curves);
    if (handle == nullptr) return std::nullopt;
    return Profile(handle, Model::kRgb);
}

std::optional<Profile> Profile::FromGreyCurve(Curve curve) {
    if (!MakesSense(curve)) return std::nullopt;
    const ToneCurve light = MakeCurve(curve);
    const cmsHPROFILE handle = light ? cmsCreateGrayProfile(cmsD50_xyY(), light.get()) : nullptr;
    if (handle == nullptr) throw std::bad_alloc();
    return Profile(handle, Model::kGrey);
}

Profile Profile::AdobeRgb() {
    Primaries primaries = kSrgbPrimaries;
    primaries.green = {0.21, 0.71};
    return FromPrimaries(primaries, {kAdobeGamma}).value();
}

std::vector<uint8_t> Profile::Icc() const {
    cmsUInt32Number size = 0;
    if (!cmsSaveProfileToMem(handle_.get(), nullptr, &size)) return {};
    std::vector<uint8_t> icc(size);
    if (!cmsSaveProfileToMem(handle_.get(), icc.data(), &size)) return {};
    // The present time, as the library has it, would make another file of each picture.
    constexpr size_t kDate = 24;
    constexpr std::array<uint8_t, 12> kNewYear2000{0x07, 0xD0, 0, 1, 0, 1};
    if (icc.size() >= kHeader) std::ranges::copy(kNewYear2000, &icc[kDate]);
    return icc;
}

std::u16string Profile::Name() const {
    std::array<wchar_t, kLongestName + 1> wide{};
    cmsGetProfileInfo(Handle(), cmsInfoDescription, "ja", "JP", wide.data(),
                      kLongestName * sizeof(wchar_t));
    std::u16string name;
    for (size_t i = 0; wide[i] != 0; ++i)
        name += static_cast<char16_t>(wide[i]);
    return name;
}

}  // namespace tessary::color
