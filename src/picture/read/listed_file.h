// One file of a list of them.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

struct ListedFile {
    std::wstring path{};  // full
    uint64_t size = 0;    // as FoundFile
    uint64_t time = 0;
    uint32_t place = 0;    // where it was found, among the others
    bool isWanted = true;  // false: steps pass it by
};

}  // namespace tessary
