// A number that tells a text or block from others.
#pragma once

#include <cstdint>
#include <type_traits>

namespace tessary {

// FNV-1a over the units of a string view. The settings store has such numbers: they must stay the
// same in later versions.
template <typename View>
constexpr uint64_t HashOf(const View& view) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const auto unit : view)
        hash = (hash ^ static_cast<std::make_unsigned_t<typename View::value_type>>(unit)) *
               0x100000001B3;
    return hash;
}

}  // namespace tessary
