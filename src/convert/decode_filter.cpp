#include "convert/decode_filter.h"

#include "convert/name_mask.h"

namespace tessary {

bool CheckDecodeFileName(const std::wstring& name, const ConvertSettings& settings) {
    if (settings.useDecodeFileMask == 0) return true;
    if (settings.useDecodeFileMask != 1) return false;
    if (settings.decodeFileMaskSet != 0 && settings.decodeFileMaskSet != 1) return false;
    return MatchesNameMask(name, settings.decodeFileMask) == (settings.decodeFileMaskSet == 0);
}

bool CheckDecodeSize(int32_t width, int32_t height, const ConvertSettings& settings) {
    if (settings.noDecodeSmall != 1) return true;
    const bool isWide = width > settings.minDecodeSizeX;
    const bool isHigh = height > settings.minDecodeSizeY;
    return settings.decodeSizeBoth ? isWide && isHigh : isWide || isHigh;
}

}  // namespace tessary
