// Small files of our own: the seeds of the fuzzers, which README.md beside them lists.
#pragma once

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/content_of.h"
#ifdef _WIN32
#include "tests/support/loaded_library.h"
#endif

namespace tessary::test {

using Bytes = std::vector<uint8_t>;

// Where they are: on Windows beside the test programs, which go to other machines.
inline std::filesystem::path SeedFolder() {
#ifdef _WIN32
    return TestProgramFolder() + L"seeds";
#else
    return TESSARY_SEEDS;
#endif
}

// The file of this name there, as "fuzz_png/grey1"; unpacked when it is a ".gz".
inline Bytes Seed(const std::string& name) {
    const std::filesystem::path path = SeedFolder() / name;
    Bytes bytes = ContentOf<Bytes>(path);
    EXPECT_FALSE(bytes.empty()) << path;
    if (path.extension() != ".gz") return bytes;
    bytes.clear();
    const gzFile file = gzopen(path.string().c_str(), "rb");
    uint8_t piece[8192];
    for (int count = 0; (count = gzread(file, piece, sizeof piece)) > 0;)
        bytes.insert(bytes.end(), piece, piece + count);
    gzclose(file);
    return bytes;
}

// Where `text` stands in `bytes` for the `nth` time, counted from 0.
inline size_t Find(const Bytes& bytes, std::string_view text, size_t nth = 0) {
    const Bytes wanted(text.begin(), text.end());
    auto at = std::search(bytes.begin(), bytes.end(), wanted.begin(), wanted.end());
    for (; nth > 0; --nth)
        at = std::search(at + 1, bytes.end(), wanted.begin(), wanted.end());
    EXPECT_NE(at, bytes.end()) << text;
    return static_cast<size_t>(at - bytes.begin());
}

// The first `size` of them.
inline Bytes Cut(Bytes bytes, size_t size) {
    bytes.resize(size);
    return bytes;
}

// With a little-endian number of `count` bytes at `at`.
inline Bytes With(Bytes bytes, size_t at, uint64_t value, size_t count = 1) {
    for (size_t i = 0; i < count; ++i, value >>= 8)
        bytes.at(at + i) = static_cast<uint8_t>(value);
    return bytes;
}

// With another bit at `at`.
inline Bytes Damaged(Bytes bytes, size_t at, int mask = 1) {
    bytes.at(at) = static_cast<uint8_t>(bytes.at(at) ^ mask);
    return bytes;
}

}  // namespace tessary::test
