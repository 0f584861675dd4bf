// What a bundled plug-in supplies to the shared entry points: who it is, and its codec.
#pragma once

#include <span>

#include "plugins/common/picture_codec.h"

namespace tessary::spi {

// One line of a host's list of file types.
struct FileType {
    const char* patterns;        // "*.jpg;*.jpeg"
    const wchar_t* description;  // Japanese
    const char* fallback;        // ASCII, where the system's code page has no Japanese
};

struct PluginIdentity {
    const char* product;  // name, version and what it reads, as hosts list it; ASCII
    std::span<const FileType> fileTypes;
};

// Defined once in each plug-in. Both answers live as long as the module.
const PluginIdentity& Identity();
const codec::PictureCodec& Codec();

}  // namespace tessary::spi
