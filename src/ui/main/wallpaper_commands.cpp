#include "ui/main/wallpaper_commands.h"

#include <windows.h>

#include <utility>

#include "app/base/message_box.h"
#include "app/base/modGetFolder.h"
#include "app/base/write_error.h"
#include "app/settings/RegKeys.h"
#include "app/settings/modValue.h"
#include "picture/current_picture.h"
#include "picture/modDIBToPicture.h"
#include "picture/opaque_picture.h"
#include "picture/save/save_picture.h"
#include "picture/srgb_picture.h"
#include "picture/view/picture_kernel.h"
#include "picture/view/sight_pixels.h"
#include "res/resource.h"
#include "ui/form/busy_pointer.h"

namespace tessary {
namespace {

constexpr wchar_t kFileName[] = L"tessary_viewer_wall_paper.bmp";

// Values of the desktop's registry key.
constexpr wchar_t kTile[] = L"TileWallpaper";
constexpr wchar_t kCentred[] = L"0";
constexpr wchar_t kTiled[] = L"1";
// 0: in its own size. Anything else stretches the wallpaper whatever the other value says.
constexpr wchar_t kStretch[] = L"WallpaperStyle";
constexpr wchar_t kNotStretched[] = L"0";

// A plain bitmap, whatever the user has chosen for his own files: it is read by the desktop.
bool SavePlainly(const Picture& picture, const std::wstring& fileName) {
    return SaveBitmap(picture.Info().data(), picture.Bits().data(), fileName, {});
}

// The current picture in the size of a fixed mode, else its own, but no larger than the screen; as
// the screen shows it.
Picture DesktopPicture(const SightRoom& room) {
    if (!CurrentPicture()) return {};
    const Picture current = SrgbPicture(CurrentPicture().Another());
    const SIZE own{current.Width(), current.Height()};
    FitRule rule = ChosenFitRule();
    if (rule.sizeMode > kSizeModeScreen) rule = {.sizeMode = kSizeModeScreen};
    const SIZE wanted = FittedSize(own, rule, {room.whole, room.workArea});
    const Picture resized =
        IsExactAsItIs(own, wanted)
            ? current.Another()
            : ResizePicture(current, wanted.cx, wanted.cy, Handover::kMemory, ChosenLight());
    const Picture opaque =
        resized ? OpaquePicture(resized.View(), FlatBackdrop(Values().general)) : Picture();
    const Picture& shown = opaque ? opaque : resized;
    const UniqueScreenDc screen(GetDC(nullptr));
    PictureReference object;
    OLE_HANDLE bitmap = 0;
    if (!shown ||
        !DIBToPicture(screen.Get(), {shown.Info().data(), shown.Bits().data()}, object.Receive()) ||
        FAILED(object.Get()->get_Handle(&bitmap))) {
        return {};
    }
    // Handles of GDI have 32 significant bits; the wider type takes them with their sign.
    return CreateDIBFromBitmap(
        screen.Get(), reinterpret_cast<HBITMAP>(static_cast<INT_PTR>(static_cast<int>(bitmap))));
}

bool SetUserWallpaper(const std::wstring& file) {
    std::wstring name = file;
    return SystemParametersInfoW(SPI_SETDESKWALLPAPER, 0, name.data(),
                                 SPIF_UPDATEINIFILE | SPIF_SENDCHANGE) != FALSE;
}

}  // namespace

Desktop UserDesktop() {
    Desktop desktop{{WindowsFolder()}, LR"(Control Panel\desktop)", SetUserWallpaper};
    const std::wstring own = LocalDataFolder();
    if (!own.empty()) desktop.folders.push_back(own);
    return desktop;
}

WallpaperCommands::WallpaperCommands(frmMain& window, Desktop desktop)
    : window_(window), desktop_(std::move(desktop)) {
    const auto pictureShown = [this] { return window_.PictureShown(); };
    CommandTable& commands = window_.Commands();
    commands.Register(menuViewWallpaperCenter, {.run = [this] { menuViewWallpaperCenter_Click(); },
                                                .enabled = pictureShown});
    commands.Register(menuViewWallpaperTile,
                      {.run = [this] { menuViewWallpaperTile_Click(); }, .enabled = pictureShown});
    commands.Register(menuViewWallpaperEsc, {.run = [this] { menuViewWallpaperEsc_Click(); }});
}

void WallpaperCommands::menuViewWallpaperCenter_Click() {
    SetWallpaper(kCentred);
}

void WallpaperCommands::menuViewWallpaperTile_Click() {
    SetWallpaper(kTiled);
}

void WallpaperCommands::menuViewWallpaperEsc_Click() {
    Show({});
}

void WallpaperCommands::SetWallpaper(const wchar_t* tileStyle) {
    DWORD error = ERROR_NOT_ENOUGH_MEMORY;
    const std::wstring file = SavePicture(error);
    if (file.empty()) {
        ShowMessageBox(L"壁紙のファイルを保存できません。\r\n" + desktop_.folders.back() +
                           kFileName + L"\r\n\r\n" + WriteErrorText(error),
                       MB_ICONEXCLAMATION);
        return;
    }
    SetRegistryString(HKEY_CURRENT_USER, desktop_.keyPath, kTile, tileStyle);
    SetRegistryString(HKEY_CURRENT_USER, desktop_.keyPath, kStretch, kNotStretched);
    Show(file);
}

void WallpaperCommands::Show(const std::wstring& file) const {
    const bool isShown = [&] {
        const BusyPointer busy;
        return desktop_.setWallpaper(file);
    }();
    if (isShown) return;
    ShowMessageBox(
        L"壁紙を変更できません。\r\nシステムの管理者が壁紙の変更を禁止している可能性があります。",
        MB_ICONEXCLAMATION);
}

// The full name of the file; empty when no folder takes it. `error`: why the last one does not.
std::wstring WallpaperCommands::SavePicture(DWORD& error) const {
    const BusyPointer busy;
    const Picture picture = DesktopPicture(window_.Room());
    if (!picture) return {};
    for (const std::wstring& folder : desktop_.folders) {
        CreateDirectoryW(folder.c_str(), nullptr);
        if (SavePlainly(picture, folder + kFileName)) return folder + kFileName;
        error = GetLastError();
    }
    return {};
}

}  // namespace tessary
