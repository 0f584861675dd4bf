// The names that the X Window System has for colours.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessary::misc {

// 0xRRGGBB of a name, in small or large letters, with spaces or without; null for others.
std::optional<uint32_t> X11Color(std::string_view name);

}  // namespace tessary::misc
