#include "ui/control/bar_dock.h"

#include <algorithm>
#include <string>

#include "app/base/error.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "ui/control/bar_layout.h"

namespace tessary {
namespace {

constexpr wchar_t kSection[] = L"Window";
constexpr wchar_t kSideKey[] = L"ControlBarDock";
constexpr wchar_t kThicknessKey[] = L"ControlBarDockSize_";  // and the number of the side
constexpr wchar_t kFilesKey[] = L"ControlBarDockFiles";
constexpr wchar_t kHiddenKey[] = L"ControlBarDockHidden";

constexpr int kMostThickness = 10000;
constexpr int kUsualFiles = 600;  // permille
constexpr int kLeastFiles = 50;
constexpr int kMostFiles = 950;

// Within the limits; what is missing or no number is `other`.
int Number(const std::wstring& key, int other, int least, int most) {
    const int number = Trapped(
        other, [&] { return int{ToInt32(GetSetting(kSection, key, ToSettingText(other)))}; });
    return std::clamp(number, least, most);
}

bool IsKept(const wchar_t* key) {
    return Trapped(false, [&] { return !GetSetting(kSection, key).empty(); });
}

std::wstring ThicknessKey(size_t side) {
    return kThicknessKey + std::to_wstring(side);
}

}  // namespace

void BarDock::Read() {
    const DockSide usual = IsKept(L"ControlBar_X") ? DockSide::kFloating : DockSide::kLeft;
    const int last = static_cast<int>(DockSide::kBottom);
    const int side = Number(kSideKey, static_cast<int>(usual), -1, last + 1);
    side_ = side < 0 || side > last ? usual : static_cast<DockSide>(side);
    for (size_t i = 1; i < kSides; ++i) {
        thickness_[i] =
            Number(ThicknessKey(i), UsualThickness(static_cast<DockSide>(i)), 1, kMostThickness);
    }
    filesPermille_ = Number(kFilesKey, kUsualFiles, kLeastFiles, kMostFiles);
    isHidden_ =
        Trapped(false, [] { return ToBoolean(GetSetting(kSection, kHiddenKey, L"False")); });
}

void BarDock::Save() const {
    const auto save = [](const std::wstring& key, const std::wstring& text) {
        Trapped([&] { SaveSetting(kSection, key, text); });
    };
    save(kSideKey, ToSettingText(static_cast<int32_t>(side_)));
    for (size_t i = 1; i < kSides; ++i)
        save(ThicknessKey(i), ToSettingText(int32_t{thickness_[i]}));
    save(kFilesKey, ToSettingText(int32_t{filesPermille_}));
    save(kHiddenKey, ToSettingText(isHidden_));
}

}  // namespace tessary
