#include "plugins/common/plugin_info.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "plugins/common/bundled_plugin.h"

namespace tessary::spi {
namespace {

std::string Description(const FileType& type) {
    // A UTF-8 code page holds everything, and takes neither the flag nor the question whether it
    // does.
    const bool canLose = GetACP() != CP_UTF8;
    const DWORD flags = canLose ? WC_NO_BEST_FIT_CHARS : 0;
    const int size =
        WideCharToMultiByte(CP_ACP, flags, type.description, -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(std::max(size, 1)), '\0');
    BOOL lost = FALSE;
    const int written = WideCharToMultiByte(CP_ACP, flags, type.description, -1, text.data(), size,
                                            nullptr, canLose ? &lost : nullptr);
    if (written == 0 || lost) return type.fallback;
    text.pop_back();  // the NUL
    return text;
}

std::string InfoText(const char* interfaceVersion, int infoNumber) {
    if (infoNumber == 0) return interfaceVersion;
    if (infoNumber == 1) return Identity().product;
    if (infoNumber < 0) return {};
    const size_t index = static_cast<size_t>(infoNumber - 2) / 2;
    if (index >= Identity().fileTypes.size()) return {};
    const FileType& type = Identity().fileTypes[index];
    return infoNumber % 2 == 0 ? type.patterns : Description(type);
}

}  // namespace

int WritePluginInfo(const char* interfaceVersion, int infoNumber, char* buffer, int bufferLength) {
    if (buffer == nullptr || bufferLength <= 0) return 0;
    const std::string text = InfoText(interfaceVersion, infoNumber);
    const char* end = text.c_str();
    const char* const limit = end + bufferLength - 1;
    while (*end != '\0') {
        const char* next = CharNextExA(CP_ACP, end, 0);
        if (next > limit) break;
        end = next;
    }
    const auto length = static_cast<int>(end - text.c_str());
    std::copy_n(text.c_str(), length, buffer);
    buffer[length] = '\0';
    return length;
}

}  // namespace tessary::spi
