#include "app/modMain.h"

#include <windows.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/base/command_line.h"
#include "app/base/message_box.h"
#include "app/base/modGetFolder.h"
#include "app/base/modScreenCaps.h"
#include "app/base/paths.h"
#include "app/base/quit.h"
#include "app/base/text.h"
#include "app/first_run.h"
#include "app/settings/settings.h"
#include "host/host_connection.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"
#include "ui/control/frmControl.h"
#include "ui/control/open_commands.h"
#include "ui/control/save_commands.h"
#include "ui/convert/convert_commands.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/message_loop.h"
#include "ui/form/worker.h"
#include "ui/main/clipboard_commands.h"
#include "ui/main/frmMain.h"
#include "ui/main/wallpaper_commands.h"
#include "ui/options/frmOption.h"
#include "ui/options/option_commands.h"
#include "ui/options/plugin_loading.h"

namespace tessary {
namespace {

constexpr int16_t kLeastColorDepth = 16;

constexpr wchar_t kLoadingCaption[] = L"SusiePluginをロードしています";

void TellFailedStart(const std::wstring& reason) {
    ShowMessageBox(L"アプリケーションの初期化に失敗しました。\r\n" + reason, MB_ICONSTOP,
                   L"致命的エラー");
}

// What a shortcut says of the window's state.
int ShowCommand() {
    STARTUPINFOW start{};
    GetStartupInfoW(&start);
    return (start.dwFlags & STARTF_USESHOWWINDOW) != 0 ? start.wShowWindow : SW_SHOWNORMAL;
}

// Names the plug-ins in whose calls earlier runs ended, and what the loading has found amiss. In
// the status bar: a message box would greet the user with a plug-in's fault, again and again if it
// ends every run.
void TellNotices(PictureView& view, const HelperLibraries& libraries) {
    std::vector<std::wstring> notices = InterruptedCallNotices();
    if (std::wstring loading = LoadingNotice(); !loading.empty()) notices.push_back(loading);
    if (!libraries.notice.empty()) notices.push_back(libraries.notice);
    if (!notices.empty()) view.SetPanelText(kNoticePanel, InOneLine(notices));
}

}  // namespace

int Main() {
    if (GetColorDepth() < kLeastColorDepth) {
        ShowMessageBox(
            L"このバージョンは１６Ｂｉｔカラー以上のディスプレーモードでしか動作しません",
            MB_ICONEXCLAMATION);
        return 0;
    }
    std::vector<std::wstring> names = CommandLineNames(CommandLineArguments(), GetPlatformId());
    // Explorer starts programs in the folder of the opened file. As long as that is the current one
    // nobody can rename it, nor take its drive out.
    SetCurrentDirectoryW(AppFolder().c_str());
    // Stays until the main window is there: with no window between them another program's would
    // come to the front.
    std::optional<frmProgress> progress(std::in_place, nullptr, kLoadingCaption);
    HelperLibraries libraries;
    if (!InitializeApplication(libraries, TellIn(*progress))) {
        progress.reset();
        TellFailedStart(libraries.failure);
        return 0;
    }
    frmMain window({.commandLine = std::move(names),
                    .pluginCount = [] { return SusieCollection().Count(); },
                    .endProgram =
                        [] {
                            TerminateApplication();
                            RequestQuit(0);
                        },
                    .showCommand = ShowCommand()});
    frmControl controlBar(window);
    window.SetControlBar(controlBar);
    OpenCommands openCommands(window, controlBar);
    SaveCommands saveCommands(window);
    OptionCommands optionCommands(window);
    ConvertCommands convertCommands(window, controlBar, [&optionCommands](HWND owner) {
        optionCommands.ShowOptions(owner, kConvertPage);
    });
    ClipboardCommands clipboardCommands(window);
    WallpaperCommands wallpaperCommands(window);
    if (!window.Load() || !controlBar.Load(window.Handle())) {
        progress.reset();
        TellFailedStart({});
        return 1;
    }
    TellNotices(window, libraries);
    window.Show();
    progress.reset();
    return RunMessageLoop();
}

bool InitializeApplication(HelperLibraries& libraries, const LoadingProgress& progress) {
    UseHostProcess([](std::span<const HANDLE> handles, DWORD milliseconds, bool isUsers) {
        if (isUsers) return WaitHandlingMessages(handles, milliseconds);
        WaitPainting(handles, milliseconds);
        return true;
    });
    libraries = CheckHelperLibraries();
    if (libraries && !PathExists(AppFolder() + kHostProgram)) {
        libraries.failure = ToUpper(kHostProgram) + L" が見つかりません。";
    }
    // The first access creates the collection, and the plug-ins of the settings' folders fill it.
    return libraries && ReadGeneralSettings() && ReadConvertSettings() && ApplyFirstRunDefaults() &&
           LoadSPI(progress);
}

int16_t TerminateApplication() {
    // First: a plug-in may end the process when it is freed.
    WriteGeneralSettings();
    WriteConvertSettings();
    UnloadSPI();
    return 0;
}

}  // namespace tessary
