#include "picture/color/monitor_colors.h"

#include <algorithm>
#include <utility>

#include "app/base/handles.h"
#include "helpers/files/file_source.h"

namespace tessary {
namespace {

// Two windows on different monitors, each with pixels of both layouts.
constexpr size_t kMostWays = 4;

const color::Profile& Srgb() {
    static const color::Profile profile = color::Profile::Srgb();
    return profile;
}

std::shared_ptr<const color::Transform> MakeWay(std::span<const uint8_t> icc,
                                                const std::optional<color::Profile>& monitor,
                                                color::Layout layout) {
    const auto embedded = icc.empty() ? std::nullopt : color::Profile::FromIcc(icc);
    const bool isUsable = embedded && embedded->ModelOf() == color::Model::kRgb;
    const color::Profile& from = isUsable ? *embedded : Srgb();
    const color::Profile& to = monitor ? *monitor : Srgb();
    if (AreAlike(from, to)) return nullptr;
    return color::Transform::Make(from, to, layout);
}

}  // namespace

std::optional<color::Profile> ReadProfileFile(const std::wstring& path) {
    auto file = files::FileSource::Open(path);
    if (!file || file->Size() > color::kLargestProfile) return std::nullopt;
    std::vector<uint8_t> icc(static_cast<size_t>(file->Size()));
    if (file->ReadAt(0, icc) != icc.size()) return std::nullopt;
    auto profile = color::Profile::FromIcc(icc);
    return profile && profile->ModelOf() == color::Model::kRgb ? profile : std::nullopt;
}

std::optional<color::Profile> ReadMonitorProfile(HMONITOR monitor) {
    MONITORINFOEXW info{};
    info.cbSize = sizeof info;
    if (!GetMonitorInfoW(monitor, &info)) return std::nullopt;
    const UniqueMemoryDc screen(CreateDCW(info.szDevice, nullptr, nullptr, nullptr));
    if (!screen) return std::nullopt;
    std::wstring path(32768, L'\0');
    auto length = static_cast<DWORD>(path.size());
    const BOOL hasProfile = GetICMProfileW(screen.Get(), &length, path.data());
    if (!hasProfile) return std::nullopt;
    path.resize(path.find(L'\0'));
    return ReadProfileFile(path);
}

void MonitorColors::Forget() {
    monitors_.clear();
    ways_.clear();
}

const std::optional<color::Profile>& MonitorColors::ProfileOf(HMONITOR monitor) {
    const auto known = std::ranges::find(monitors_, monitor, &Monitor::handle);
    if (known != monitors_.end()) return known->profile;
    return monitors_.emplace_back(monitor, read_(monitor)).profile;
}

std::shared_ptr<const color::Transform> MonitorColors::WayFor(HWND window,
                                                              std::span<const uint8_t> icc,
                                                              color::Layout layout) {
    const HMONITOR monitor = MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST);
    const auto known = std::ranges::find_if(ways_, [&](const Way& way) {
        return way.monitor == monitor && way.layout == layout && std::ranges::equal(way.icc, icc);
    });
    if (known != ways_.end()) {
        std::rotate(ways_.begin(), known, known + 1);
        return ways_.front().transform;
    }
    if (ways_.size() == kMostWays) ways_.pop_back();
    Way way{monitor, layout, {icc.begin(), icc.end()}, MakeWay(icc, ProfileOf(monitor), layout)};
    return ways_.insert(ways_.begin(), std::move(way))->transform;
}

}  // namespace tessary
