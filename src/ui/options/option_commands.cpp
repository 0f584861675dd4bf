#include "ui/options/option_commands.h"

#include <algorithm>
#include <string>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/settings.h"
#include "host/host_connection.h"
#include "picture/ahead/pictures_ahead.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/activity.h"
#include "ui/form/busy_window.h"
#include "ui/options/closing_windows.h"
#include "ui/options/frmAbout.h"
#include "ui/options/frmOption.h"
#include "ui/options/frmSPIAbout.h"
#include "ui/options/plugin_loading.h"

namespace tessary {
namespace {

constexpr wchar_t kReloadCaption[] = L"SusiePluginをリロードしています";

// Folders that are to be searched and are not there, for a message. Only those that `former` does
// not have: a share that is away for the moment is told in the list and the status bar.
std::wstring MissingFolders(const GeneralSettings& general, const GeneralSettings& former) {
    std::wstring missing;
    for (int i = 0; general.useSPI == 1 && i < kPluginFolderCount; ++i) {
        const std::wstring& folder = general.spiFolder[i];
        const bool isNew = !former.loadSPI[i] || folder != former.spiFolder[i];
        if (isNew && general.loadSPI[i] && !folder.empty() && !IsFolder(folder)) {
            missing += L"\r\n" + folder;
        }
    }
    return missing;
}

bool HasPluginOf(const std::wstring& folder) {
    const std::wstring prefix = FullPathOf(folder.ends_with(L'\\') ? folder : folder + L'\\');
    return std::ranges::any_of(SusieCollection().NewEnum(), [&](const auto& plugin) {
        return EqualsIgnoreCase(FolderOf(plugin->DllName()), prefix);
    });
}

}  // namespace

OptionCommands::OptionCommands(frmMain& window) : window_(window) {
    // During a load they are put off.
    const auto noCall = [] { return !PluginCallUnderWay() || IsReadUnderWay(); };
    const auto add = [&](int item, std::function<void()> run) {
        window_.Commands().Register(item, {.run = std::move(run), .enabled = noCall});
    };
    add(menuOptionSetup, [this] { menuOptionSetup_Click(); });
    for (int folder = 0; folder < kPluginFolderCount; ++folder) {
        add(menuOptionSPIFolder_0 + folder, [this, folder] { menuOptionSPIFolder_Click(folder); });
    }
    add(menuHelpAbout, [this] { menuHelpAbout_Click(); });
    add(menuHelpSPIAbout, [this] { menuHelpSPIAbout_Click(); });
}

void OptionCommands::menuOptionSetup_Click() {
    ShowOptions(window_.Handle(), kPluginPage);
}

void OptionCommands::ShowOptions(HWND owner, int page) {
    if (IsReadUnderWay() || PluginCallUnderWay()) return;
    frmOption dialog([this](const OptionValues& options, HWND window) { Apply(options, window); });
    const ClosingWindows settingsWindows;  // those of plug-ins
    SusieCollection().RefreshInfo();
    const bool isConfirmed = dialog.Edit(owner, page);
    SusieCollection().RefreshInfo();
    Ahead().Forget();
    if (isConfirmed) Apply(dialog.Options(), owner);
    // What was told of a plug-in at the start is settled.
    if (dialog.HasForgiven()) window_.SetPanelText(kNoticePanel, LoadingNotice());
}

void OptionCommands::Apply(const OptionValues& options, HWND owner) {
    const GeneralSettings former = Values().general;
    const int16_t formerSize = Values().fixSizeValue;
    SetOptions(options);
    SetHostLimits(Values().general);
    // Written first: a plug-in that ends the program while it is loaded takes nothing along.
    WriteGeneralSettings();
    WriteConvertSettings();
    if (options.fixSizeValue != formerSize) {
        window_.Commands().Run(commandDisplaySize_0 + options.fixSizeValue);
    } else if (former.enlargeSmall != Values().general.enlargeSmall ||
               former.holdBoxes != Values().general.holdBoxes) {
        window_.FollowSizeMode();
    }
    window_.FollowLight();
    if (former.listOrder != Values().general.listOrder ||
        former.listDescending != Values().general.listDescending) {
        const GeneralSettings chosen = Values().general;
        window_.Commands().Run(commandOrder_0 + chosen.listOrder);
        if (Values().general.listDescending != chosen.listDescending)
            window_.Commands().Run(commandOrderDescending);
    }
    window_.ShowTitle();
    window_.Commands().Run(commandMemoryChanged);
    if (!DifferInPlugins(Values().general, former) && !SusieCollection().IsIncomplete()) return;
    const std::wstring missing = MissingFolders(Values().general, former);
    ReloadPlugins(owner);
    if (!missing.empty()) {
        ShowMessageBox(L"次のプラグインフォルダが見つかりません。" + missing, MB_ICONEXCLAMATION);
    }
}

void OptionCommands::ReloadPlugins(HWND owner) {
    {
        const ReadUnderWay reading;
        BusyWindow busy(window_.Handle());
        busy.SetCaption(kReloadCaption);
        frmProgress window(owner, kReloadCaption);
        SusieCollection().UnloadFile();
        Ahead().Forget();
        const GeneralSettings before = Values().general;
        LoadSPI(TellIn(window));
        window_.SetPanelText(kNoticePanel, LoadingNotice());
        // Loading switches folders off in which nothing is.
        if (Values().general != before) WriteGeneralSettings();
    }
    window_.CloseIfAsked();
    window_.ShowPluginCount();
}

void OptionCommands::menuOptionSPIFolder_Click(int folder) {
    GeneralSettings& general = Values().general;
    const std::wstring chosen = BrowseForFolder(
        window_.Handle(), L"プラグインフォルダ(" + std::to_wstring(folder + 1) + L")",
        L"Susie Pluginのあるフォルダを指定してください。", general.spiFolder[folder]);
    // Messages ran meanwhile.
    if (chosen.empty() || IsReadUnderWay() || PluginCallUnderWay()) return;
    general.useSPI = 1;
    general.spiFolder[folder] = chosen;
    general.loadSPI[folder] = true;
    WriteGeneralSettings();
    ReloadPlugins(window_.Handle());
    if (HasPluginOf(chosen) || SusieCollection().IsIncomplete()) return;
    ShowMessageBox(L"フォルダ " + chosen + L" に使用できるプラグインがありません。",
                   MB_ICONINFORMATION);
}

void OptionCommands::menuHelpAbout_Click() {
    frmAbout().Show(window_.Handle());
}

void OptionCommands::menuHelpSPIAbout_Click() {
    frmSPIAbout().Show(window_.Handle());
}

}  // namespace tessary
