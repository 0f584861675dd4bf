// Which files and pictures the user wants converted.
#pragma once

#include <cstdint>
#include <string>

#include "app/settings/modValue.h"

namespace tessary {

// Whether a file name, without its folder, passes the name filter. Settings out of range refuse
// every name.
bool CheckDecodeFileName(const std::wstring& name, const ConvertSettings& settings);

// Whether a picture of that many pixels is large enough. One exactly at a limit is not.
bool CheckDecodeSize(int32_t width, int32_t height, const ConvertSettings& settings);

}  // namespace tessary
