#include "places/target_folders.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/settings_store.h"
#include "places/memory_lock.h"

namespace tessary {
namespace {

// The key of an entry is its number, its text `use|path`.
constexpr wchar_t kSection[] = L"TargetFolders";

// With or without a separator at its end it is the same folder.
std::wstring PlainPath(const std::wstring& path) {
    return path.size() > 3 && path.ends_with(L'\\') ? RemoveBackslash(path) : path;
}

auto Find(const std::vector<TargetFolder>& folders, const std::wstring& path) {
    return std::ranges::find_if(
        folders, [&](const TargetFolder& folder) { return EqualsIgnoreCase(folder.path, path); });
}

int NumberFor(const std::vector<TargetFolder>& folders, const std::wstring& path) {
    if (const auto known = Find(folders, path); known != folders.end()) return known->number;
    for (int number = 0; number < kMostTargetFolders; ++number) {
        if (std::ranges::find(folders, number, &TargetFolder::number) == folders.end())
            return number;
    }
    return std::ranges::min_element(folders, {}, &TargetFolder::lastUse)->number;
}

}  // namespace

std::vector<TargetFolder> TargetFolders() {
    std::vector<TargetFolder> folders;
    for (const auto& [key, text] : Trapped(std::vector<std::pair<std::wstring, std::wstring>>(),
                                           [] { return SettingTexts(kSection); })) {
        wchar_t* end = nullptr;
        const uint64_t lastUse = std::wcstoull(text.c_str(), &end, 10);
        const bool isNumber = key.size() == 1 && key[0] >= L'0' && key[0] <= L'9';
        if (!isNumber || *end != L'|' || end[1] == L'\0' || lastUse == UINT64_MAX) continue;
        folders.push_back({key[0] - L'0', end + 1, lastUse});
    }
    std::ranges::sort(folders, {}, &TargetFolder::number);
    return folders;
}

void KeepTargetFolder(const std::wstring& path) {
    const MemoryLock held;
    Trapped([&] {
        const std::wstring folder = PlainPath(path);
        const std::vector<TargetFolder> folders = TargetFolders();
        uint64_t use = 1;
        for (const TargetFolder& other : folders)
            use = std::max(use, other.lastUse + 1);
        SaveSetting(kSection, std::to_wstring(NumberFor(folders, folder)),
                    std::to_wstring(use) + L'|' + folder);
    });
}

void DropTargetFolder(const std::wstring& path) {
    const MemoryLock held;
    Trapped([&] {
        const std::vector<TargetFolder> folders = TargetFolders();
        const auto known = Find(folders, PlainPath(path));
        if (known != folders.end()) DeleteSetting(kSection, std::to_wstring(known->number));
    });
}

}  // namespace tessary
