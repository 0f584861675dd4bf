// The way of a picture's colours to those of the monitor that it is shown on.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "helpers/color/color_transform.h"

namespace tessary {

// The profile that the system has for a monitor: nothing where it has none, or one of no use.
// Programs that ask for it convert colours themselves; where Windows does that for all of them
// (Windows 11's colour management for programs) it answers sRGB.
std::optional<color::Profile> ReadMonitorProfile(HMONITOR monitor);

// The profile of colours in a file; nothing when it cannot be read or is damaged.
std::optional<color::Profile> ReadProfileFile(const std::wstring& path);

// Remembers the monitors' profiles and the last ways. Of one thread, that of the window.
class MonitorColors {
  public:
    using ProfileReader = std::optional<color::Profile> (*)(HMONITOR);
    explicit MonitorColors(ProfileReader read = ReadMonitorProfile) : read_(read) {}

    // From a picture's profile (empty: sRGB) to the monitor that shows most of the window; null
    // when pixels are shown as they are. Pixels are of the layout kBgr8 or kBgra8. To be asked
    // whenever something is drawn: it costs nothing as long as all stays the same. What it answers
    // may be used by any thread.
    std::shared_ptr<const color::Transform> WayFor(HWND window, std::span<const uint8_t> icc,
                                                   color::Layout layout);

    // The monitors' profiles are read anew; for messages such as WM_DISPLAYCHANGE, and
    // WM_SETTINGCHANGE.
    void Forget();

  private:
    struct Monitor {
        HMONITOR handle;
        std::optional<color::Profile> profile;
    };
    struct Way {
        HMONITOR monitor;
        color::Layout layout;
        std::vector<uint8_t> icc;
        std::shared_ptr<const color::Transform> transform;
    };

    const std::optional<color::Profile>& ProfileOf(HMONITOR monitor);

    ProfileReader read_;
    std::vector<Monitor> monitors_;
    std::vector<Way> ways_;  // the latest first
};

}  // namespace tessary
