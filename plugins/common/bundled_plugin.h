// What every bundled plug-in supplies to the shared code: who it is.
#pragma once

#include <span>

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

// Defined once in each plug-in. The answer lives as long as the module.
const PluginIdentity& Identity();

}  // namespace tessary::spi
