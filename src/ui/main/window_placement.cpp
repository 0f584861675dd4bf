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

}  // namespace

void SaveMainPlacement(const WINDOWPLACEMENT& placement) {
    const RECT& frame = placement.rcNormalPosition;
    const bool maximized =
        placement.showCmd == SW_SHOWMAXIMIZED ||
        (placement.showCmd == SW_SHOWMINIMIZED && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
    const std::wstring x = ToSettingText(int32_t{frame.left});
    const std::wstring y = ToSettingText(int32_t{frame.top});
    const std::wstring width = ToSettingText(int32_t{frame.right - frame.left});
    const std::wstring height = ToSettingText(int32_t{frame.bottom - frame.top});
    const std::wstring state = ToSettingText(maximized);
    const KeyAndText texts[] = {{L"Main_X", x},
                                {L"Main_Y", y},
                                {L"Main_Width", width},
                                {L"Main_Height", height},
                                {L"Main_Maximized", state}};
    Trapped([&] { SaveSettings(kSection, texts); });
}

std::optional<WINDOWPLACEMENT> ReadMainPlacement() {
    // What is missing or no number is 0, which is no size.
    const auto number = [](const wchar_t* key) {
        return Trapped(int32_t{0}, [&] { return ToInt32(GetSetting(kSection, key, L"0")); });
    };
    const int32_t x = number(L"Main_X");
    const int32_t y = number(L"Main_Y");
    const int32_t width = number(L"Main_Width");
    const int32_t height = number(L"Main_Height");
    if (!IsBetween(x, -kFarthest, kFarthest) || !IsBetween(y, -kFarthest, kFarthest) ||
        !IsBetween(width, kLeastSize, kFarthest) || !IsBetween(height, kLeastSize, kFarthest)) {
        return std::nullopt;
    }
    const RECT caption{x + kCaptionEnds, y, x + width - kCaptionEnds, y + kCaptionHeight};
    const bool isReachable = IsOnAScreen(caption);
    const SIZE work = SizeOf((isReachable ? ScreenOf(caption) : MainScreen()).rcWork);
    const SIZE size{std::min<LONG>(width, work.cx), std::min<LONG>(height, work.cy)};
    // Places count from the corner of the work area.
    const POINT place =
        isReachable ? POINT{x, y} : POINT{(work.cx - size.cx) / 2, (work.cy - size.cy) / 2};

    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    placement.rcNormalPosition = {place.x, place.y, place.x + size.cx, place.y + size.cy};
    placement.showCmd = number(L"Main_Maximized") != 0 ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL;
    return placement;
}

}  // namespace tessary
