// What a plug-in's answer means, in words for the user.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

// `result`: what a function of the interface has answered, or a kResult… of plugin_connection.h; a
// success too, which came with nothing.
std::wstring ResultText(int32_t result);

}  // namespace tessary
