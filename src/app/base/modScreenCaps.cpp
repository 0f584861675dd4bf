#include "app/base/modScreenCaps.h"

#include "app/base/handles.h"

namespace tessary {

int16_t GetColorDepth() {
    const UniqueScreenDc screen(GetDC(nullptr));
    if (!screen) return -1;
    return static_cast<int16_t>(GetDeviceCaps(screen.Get(), BITSPIXEL) *
                                GetDeviceCaps(screen.Get(), PLANES));
}

uint32_t GetPlatformId() {
    OSVERSIONINFOA version{};
    static_assert(sizeof(version) == 148);
    version.dwOSVersionInfoSize = sizeof(version);
    return GetVersionExA(&version) ? version.dwPlatformId : 0;
}

}  // namespace tessary
