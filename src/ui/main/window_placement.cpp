#include "ui/main/window_placement.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "ui/form/screen.h"

namespace tessary {
namespace {

constexpr wchar_t kSection[] = L"Window";

// The system's own limit of window coordinates.
constexpr int32_t kFarthest = 32767;
constexpr int32_t kLeastSize = 100;

// The part of a caption that a mouse can reach, in pixels: below the upper edge, between the icon
// and the buttons.
constexpr int kCaptionHeight = 24;
constexpr int kCaptionEnds = 40;

bool IsBetween(int32_t value, int32_t least, int32_t most) {
    return value >= least && value <= most;
}

// The work area of a place's screen, counted as the places of windows are: from the corner of the
// main screen's work area.
RECT WorkspaceOf(const RECT& place) {
    RECT work = ScreenOf(place).rcWork;
    const RECT main = MainScreen().rcWork;
    const RECT whole = MainScreen().rcMonitor;
    OffsetRect(&work, whole.left - main.left, whole.top - main.top);
    return work;
}

}  // namespace

void SaveMainPlacement(const WINDOWPLACEMENT& placement, int dpi) {
    const RECT& frame = placement.rcNormalPosition;
    const bool maximized =
        placement.showCmd == SW_SHOWMAXIMIZED ||
        (placement.showCmd == SW_SHOWMINIMIZED && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
    const std::wstring x = ToSettingText(int32_t{frame.left});
    const std::wstring y = ToSettingText(int32_t{frame.top});
    const std::wstring width = ToSettingText(int32_t{frame.right - frame.left});
    const std::wstring height = ToSettingText(int32_t{frame.bottom - frame.top});
    const std::wstring resolution = ToSettingText(int32_t{dpi});
    const std::wstring state = ToSettingText(maximized);
    const KeyAndText texts[] = {{L"Main_X", x},
                                {L"Main_Y", y},
                                {L"Main_Width", width},
                                {L"Main_Height", height},
                                {L"Main_Dpi", resolution},
                                {L"Main_Maximized", state}};
    Trapped([&] { SaveSettings(kSection, texts); });
}

std::optional<MainPlacement> ReadMainPlacement() {
    // What is missing or no number is 0, which is no size.
    const auto number = [](const wchar_t* key) {
        return Trapped(int32_t{0}, [&] { return ToInt32(GetSetting(kSection, key, L"0")); });
    };
    const MainPlacement kept{.place = {number(L"Main_X"), number(L"Main_Y")},
                             .size = {number(L"Main_Width"), number(L"Main_Height")},
                             .dpi = std::clamp(number(L"Main_Dpi"), 0, kFarthest),
                             .maximized = number(L"Main_Maximized") != 0};
    if (!IsBetween(kept.place.x, -kFarthest, kFarthest) ||
        !IsBetween(kept.place.y, -kFarthest, kFarthest) ||
        !IsBetween(kept.size.cx, kLeastSize, kFarthest) ||
        !IsBetween(kept.size.cy, kLeastSize, kFarthest)) {
        return std::nullopt;
    }
    return kept;
}

RECT PlaceOnScreens(const MainPlacement& kept, int dpi) {
    const bool isOther = kept.dpi != 0 && kept.dpi != dpi;
    const SIZE wanted =
        isOther ? SIZE{MulDiv(kept.size.cx, dpi, kept.dpi), MulDiv(kept.size.cy, dpi, kept.dpi)}
                : kept.size;
    const RECT caption{kept.place.x + kCaptionEnds, kept.place.y,
                       kept.place.x + kept.size.cx - kCaptionEnds, kept.place.y + kCaptionHeight};
    const bool isReachable = IsOnAScreen(caption);
    const SIZE work = SizeOf((isReachable ? ScreenOf(caption) : MainScreen()).rcWork);
    const SIZE size{std::min(wanted.cx, work.cx), std::min(wanted.cy, work.cy)};
    // Places count from the corner of the work area.
    POINT place = kept.place;
    if (!isReachable) {
        place = {(work.cx - size.cx) / 2, (work.cy - size.cy) / 2};
    } else if (isOther) {
        const RECT area = WorkspaceOf(caption);
        place = {std::clamp(place.x, area.left, area.right - size.cx),
                 std::clamp(place.y, area.top, area.bottom - size.cy)};
    }
    return {place.x, place.y, place.x + size.cx, place.y + size.cy};
}

}  // namespace tessary
