// The bare decoder that showing a JPEG is measured against.
#pragma once

#include <string>

namespace tessary {

// Reads a file and decodes it with libjpeg-turbo into rows of blue, green and red, and does nothing
// else.
void DecodeBareJpeg(const std::wstring& path);

}  // namespace tessary
