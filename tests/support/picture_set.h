// Pictures of other programs, where they are at hand.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace tessary::test {

// The folder that the environment names; empty, and thus no folder, when it names none.
inline std::filesystem::path PictureFolder() {
    const char* const folder = std::getenv("TESSARY_PICTURES");
    return folder != nullptr ? folder : "";
}

}  // namespace tessary::test
