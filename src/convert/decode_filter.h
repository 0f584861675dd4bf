// Which files and pictures the user wants converted (Values().convert).
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

// Whether a file name, without its folder, passes the name filter. Settings out of range refuse
// every name.
bool CheckDecodeFileName(const std::wstring& name);

// Whether a picture of that many pixels is large enough. One exactly at a limit is not.
bool CheckDecodeSize(int32_t width, int32_t height);

}  // namespace tessary
