// What stands in a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tessary::test {

// All bytes of a file, as text or in another container; none when there is no such file.
template <typename Bytes = std::string>
Bytes ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

}  // namespace tessary::test
