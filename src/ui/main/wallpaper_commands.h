// The commands that make the shown picture the desktop's wallpaper.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ui/main/frmMain.h"

namespace tessary {

// The desktop that gets the wallpaper.
struct Desktop {
    // Where the wallpaper's file may lie, with trailing backslashes: the first one that takes it,
    // and is made if need be. There is at least one.
    std::vector<std::wstring> folders;
    // The key below HKEY_CURRENT_USER with the wallpaper's style.
    std::wstring keyPath;
    // Shows a bitmap file on the desktop; an empty name: none. False when the system refuses, as it
    // does where an administrator has fixed the wallpaper.
    std::function<bool(const std::wstring& file)> setWallpaper;
};

// The user's own desktop. The file lies in the Windows folder, or among the user's local
// application data where that folder is not for him to write to.
Desktop UserDesktop();

class WallpaperCommands {
  public:
    // Registers the menu items with the window, which must outlive this, and this the window's last
    // message.
    explicit WallpaperCommands(frmMain& window, Desktop desktop = UserDesktop());
    WallpaperCommands(const WallpaperCommands&) = delete;
    WallpaperCommands& operator=(const WallpaperCommands&) = delete;

    // The picture as the window shows it, in the same size: what was fitted to the screen fills
    // the desktop.
    void menuViewWallpaperCenter_Click();
    void menuViewWallpaperTile_Click();

    void menuViewWallpaperEsc_Click();

  private:
    void SetWallpaper(const wchar_t* tileStyle);
    void Show(const std::wstring& file) const;
    std::wstring SavePicture(DWORD& error) const;

    frmMain& window_;
    Desktop desktop_;
};

}  // namespace tessary
