#include "app/modMain.h"

#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "app/base/command_line.h"
#include "app/base/message_box.h"
#include "app/base/modGetFolder.h"
#include "app/base/modScreenCaps.h"
#include "app/base/quit.h"
#include "app/base/text.h"
#include "app/first_run.h"
#include "app/settings/modValue.h"
#include "app/settings/settings.h"
#include "host/host_connection.h"
#include "host/host_program.h"
#include "picture/ahead/ahead_rules.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/frames/plugin_frames.h"
#include "picture/read/source_file.h"
#include "plugin/host_state.h"
#include "plugin/modSusie.h"
#include "plugin/no_host.h"
#include "plugin/plugin_notices.h"
#include "ui/control/drag_out.h"
#include "ui/control/frmControl.h"
#include "ui/control/open_commands.h"
#include "ui/control/place_commands.h"
#include "ui/control/save_commands.h"
#include "ui/control/turn_file_command.h"
#include "ui/convert/convert_commands.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/dress.h"
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

// Why there is no program to run plug-ins in; bitmaps are shown without it. Empty when there is
// one.
std::wstring NoHostNotice() {
    const uint32_t why = WhyNoHostProgram(HostProgram());
    return why == 0 ? std::wstring() : NoHostText(why);
}

// Names the plug-ins in whose calls earlier runs ended, and what the loading has found amiss. In
// the status bar: a message box would greet the user with a plug-in's fault, again and again if it
// ends every run.
void TellNotices(PictureView& view, const HelperLibraries& libraries, bool isAsked) {
    std::vector<std::wstring> notices = InterruptedCallNotices();
    // What is still to be asked was not left out.
    const std::wstring loading = isAsked ? LoadingNotice() : L"";
    if (!loading.empty()) notices.push_back(loading);
    if (!libraries.notice.empty()) notices.push_back(libraries.notice);
    if (std::wstring why = NoHostNotice(); loading.find(why) == std::wstring::npos)
        notices.push_back(std::move(why));
    if (!notices.empty()) view.SetPanelText(kNoticePanel, InOneLine(notices));
}

// Whether what is to be opened has to wait for the plug-ins that are still to be asked: nobody else
// names it.
bool WaitsForPlugins(const std::vector<std::wstring>& names) {
    return names.empty() || LookAtName(names.front()).kind == kFileUnknown;
}

// Asks the plug-ins of which nothing is remembered, as all are at the first start.
void AskNewPlugins(frmMain& window) {
    {
        SusieCollection().UnloadFile();
        Ahead().Forget();
        const frmMain::Reading reading(window, L"プラグインを読み込んでいます");
        frmProgress progress(window.Handle(), kLoadingCaption);
        const LoadingProgress tell = TellIn(progress);
        LoadWaitingSPI([&](const std::wstring& path, int32_t done, int32_t total) {
            return tell(path, done, total) && window.Breathe();  // Esc may have been hit there
        });
    }
    window.ShowPluginCount();
}

}  // namespace

int Main() {
    if (GetColorDepth() < kLeastColorDepth) {
        ShowMessageBox(
            L"このバージョンは１６Ｂｉｔカラー以上のディスプレーモードでしか動作しません",
            MB_ICONEXCLAMATION);
        return 0;
    }
    const std::vector<std::wstring> names =
        CommandLineNames(CommandLineArguments(), GetPlatformId());
    // Explorer starts programs in the folder of the opened file. As long as that is the current one
    // nobody can rename it, nor take its drive out.
    SetCurrentDirectoryW(AppFolder().c_str());
    HelperLibraries libraries;
    if (!InitializeApplication(libraries)) {
        TellFailedStart(libraries.failure);
        return 0;
    }
    bool isAsked = !SusieCollection().IsWaiting();
    SetAppearance(Values().general.appearance);
    frmMain window({.commandLine = names,
                    .pluginCount = [] { return SusieCollection().Count(); },
                    .endProgram =
                        [] {
                            TerminateApplication();
                            RequestQuit(0);
                        },
                    .showCommand = ShowCommand(),
                    .frameReaders = PluginFrameReaders(Host().furtherConnector),
                    .pluginsAreComing = [&isAsked] { return !isAsked; }});
    frmControl controlBar(window);
    window.SetControlBar(controlBar);
    OpenCommands openCommands(window, controlBar);
    PlaceCommands placeCommands(window, controlBar);
    SaveCommands saveCommands(window);
    TurnFileCommand turnFileCommand(window);
    DragOut dragOut(window, controlBar);
    OptionCommands optionCommands(window);
    ConvertCommands convertCommands(window, controlBar, [&optionCommands](HWND owner) {
        optionCommands.ShowOptions(owner, kConvertPage);
    });
    ClipboardCommands clipboardCommands(window);
    WallpaperCommands wallpaperCommands(window);
    if (!window.Load() || !controlBar.Load(window.Handle())) {
        TellFailedStart({});
        return 1;
    }
    TellNotices(window, libraries, isAsked);
    window.Show();
    if (!isAsked) {
        // One that hangs holds up none of its like.
        if (!WaitsForPlugins(names) && !DoEvents()) return RunMessageLoop();
        AskNewPlugins(window);
        isAsked = true;
        TellNotices(window, libraries, true);
        window.CloseIfAsked();
    }
    return RunMessageLoop();
}

bool InitializeApplication(HelperLibraries& libraries) {
    UseHostProcess([](std::span<const HANDLE> handles, DWORD milliseconds, bool isUsers) {
        if (isUsers) return WaitHandlingMessages(handles, milliseconds);
        WaitPainting(handles, milliseconds);
        return true;
    });
    // A message about what nobody has asked for would only be in the way.
    UseFurtherHosts(HostWindows::kHidden);
    Ahead().Begin(ReadingThreads(), Host().furtherConnector);
    libraries = CheckHelperLibraries();
    if (!libraries || !ReadGeneralSettings() || !ReadConvertSettings() ||
        !ApplyFirstRunDefaults()) {
        return false;
    }
    SetHostLimits(Values().general);
    // The first access creates the collection.
    SusieCollection().RememberPlugins();
    return LoadSPI({}, Asking::kNobody);
}

int16_t TerminateApplication() {
    // First: a plug-in may end the process when it is freed.
    WriteGeneralSettings();
    WriteConvertSettings();
    Ahead().End();
    UnloadSPI();
    return 0;
}

}  // namespace tessary
