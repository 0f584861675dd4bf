// Why no plug-in can be called: the program of their processes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessary {

// Load errors of plug-ins, none of the system's.
constexpr uint32_t kErrorNoHost = 0x20000001;  // it cannot be started
constexpr uint32_t kErrorHostMissing = 0x20000002;
constexpr uint32_t kErrorHostForeign =
    0x20000003;  // another program has its name, or it is damaged
constexpr uint32_t kErrorHostVersion = 0x20000004;  // it belongs to another version of this program

constexpr bool IsNoHost(uint32_t loadError) {
    return loadError >= kErrorNoHost && loadError <= kErrorHostVersion;
}

// For the user, without a full stop; and whether a text is one of those.
std::wstring NoHostText(uint32_t loadError);
bool IsNoHostText(std::wstring_view text);

}  // namespace tessary
