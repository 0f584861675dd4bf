#include "app/settings/plugin_folders.h"

#include <windows.h>

#include <algorithm>

#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "helpers/files/file_name.h"
#include "helpers/files/refusal.h"

namespace tessary {
namespace {

// The folder that a stored one has become since the program was in `former`, which ends in a
// backslash.
std::wstring Followed(const std::wstring& folder, const std::wstring& former) {
    const std::wstring whole = AddBackslash(folder);
    if (!EqualsIgnoreCase(std::wstring_view(whole).substr(0, former.size()), former)) return folder;
    const std::wstring rest = whole.substr(former.size());
    if (rest.empty()) return AppFolder();
    // What lay below it may have been left behind.
    return IsFolder(AppFolder() + rest) ? AppFolder() + rest : folder;
}

// Whether a first run of an earlier version has stored the program's own folder, which the program
// has left since. Only such a folder was stored with a backslash.
bool IsLeftBehind(const std::wstring& folder) {
    constexpr size_t kDriveRoot = 3;
    return folder.size() > kDriveRoot && folder.ends_with(L'\\') && !folder.starts_with(L"\\\\") &&
           !EqualsIgnoreCase(folder, AppFolder()) && !PathExists(folder + L"TessaryViewer.exe") &&
           FilesInFolder(folder, L"*.spi").empty();
}

// Earlier versions switched a folder off for good that was away once.
void Update(GeneralSettings& general) {
    if (IsLeftBehind(general.spiFolder[0])) {
        general.spiFolder[0] = AppFolder();
        general.loadSPI[0] = true;
    }
    const bool isAnyOn = std::ranges::any_of(general.loadSPI, [](bool isOn) { return isOn; });
    for (int i = 0; i < kPluginFolderCount; ++i)
        general.emptySPI[i] = !isAnyOn && !general.spiFolder[i].empty();
}

}  // namespace

bool MayPluginsWriteIn(const std::wstring& folder) {
    return files::MayAddFiles(files::ExtendedFullName(AddBackslash(folder)));
}

std::wstring UserPluginFolder() {
    const std::wstring own = LocalDataFolder();
    return own.empty() ? own : own + LR"(Plugins\)";
}

void OfferUserPluginFolder() {
    const std::wstring folder = UserPluginFolder();
    if (folder.empty()) return;
    if (!IsFolder(folder) && !MayPluginsWriteIn(AppFolder())) {
        CreateDirectoryW(LocalDataFolder().c_str(), nullptr);
        CreateDirectoryW(folder.c_str(), nullptr);
    }
    UseUserPluginFolder(Values().general, folder);
}

void UseUserPluginFolder(GeneralSettings& general, const std::wstring& folder) {
    constexpr int kLast = kPluginFolderCount - 1;
    if (!general.spiFolder[kLast].empty() || !IsFolder(folder)) return;
    general.spiFolder[kLast] = folder;
    general.loadSPI[kLast] = true;
}

void FollowProgram(GeneralSettings& general) {
    if (general.programFolder.empty()) {
        Update(general);
    } else if (!EqualsIgnoreCase(general.programFolder, AppFolder())) {
        for (std::wstring& folder : general.spiFolder)
            folder = Followed(folder, general.programFolder);
        general.leftProgramFolder = general.programFolder;
    }
    general.programFolder = AppFolder();
}

}  // namespace tessary
