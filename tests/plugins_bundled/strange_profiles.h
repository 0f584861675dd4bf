// Profiles that show at once whether they were used.
#pragma once

#include <lcms2.h>

#include <utility>

#include "helpers/color/color_profile.h"
#include "tests/support/seeds.h"

namespace tessary::codec::test {

// sRGB with red and blue exchanged: whether it was used shows at once.
inline tessary::test::Bytes Swapped() {
    color::Primaries primaries = color::kSrgbPrimaries;
    std::swap(primaries.red, primaries.blue);
    return color::Profile::FromPrimaries(primaries, {1, true})->Icc();
}

// Inks of which cyan takes away blue and yellow red; black as usual.
inline tessary::test::Bytes InkProfile() {
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    const cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    const cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
    cmsHTRANSFORM toLab = cmsCreateTransform(srgb, TYPE_RGB_16, lab, TYPE_LabV2_16,
                                             INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
    cmsPipeline* way = cmsPipelineAlloc(nullptr, 4, 3);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, 11, 4, 3, nullptr);
    const auto fill = [](const cmsUInt16Number* inks, cmsUInt16Number* out, void* transform) {
        cmsUInt16Number rgb[3];
        for (int i = 0; i < 3; ++i)
            rgb[i] =
                static_cast<cmsUInt16Number>((65535.0 - inks[2 - i]) * (65535.0 - inks[3]) / 65535);
        cmsDoTransform(transform, rgb, out, 1);
        return 1;
    };
    cmsStageSampleCLut16bit(table, fill, toLab, 0);
    cmsPipelineInsertStage(way, cmsAT_END, table);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsWriteTag(profile, cmsSigAToB0Tag, way);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    tessary::test::Bytes icc(size);
    cmsSaveProfileToMem(profile, icc.data(), &size);
    cmsPipelineFree(way);
    cmsDeleteTransform(toLab);
    for (const cmsHPROFILE each : {profile, srgb, lab})
        cmsCloseProfile(each);
    return icc;
}

}  // namespace tessary::codec::test
