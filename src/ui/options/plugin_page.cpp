#include "ui/options/plugin_page.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/settings/plugin_folders.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

constexpr ListView::Column kErrorColumns[] = {
    {.caption = L"関数", .width = 160, .fills = true},
    {.caption = L"エラー", .width = 60, .isNumber = true}};

// A settings window that stays open when the plug-in's call returns keeps the keys.
bool IsForeign(HWND window) {
    return window != nullptr && reinterpret_cast<HINSTANCE>(
                                    GetWindowLongPtrW(window, GWLP_HINSTANCE)) != ProgramInstance();
}

// Opens the settings window of a plug-in; what goes wrong in it is told.
void ShowSettingsOf(clsSusie& plugin, HWND owner) {
    std::wstring failure;
    try {
        const uint32_t before = plugin.ErrorSerial();
        const int32_t result = plugin.ShowConfigurationDialog(owner);
        // Other results are the plug-in's own affair: plug-ins agree on none.
        if (plugin.ErrorSerial() != before) {
            failure = result == kResultNotExported
                          ? L"プラグインは設定画面を開けないと答えました（-1）。"
                          : plugin.ErrorString();
        }
    } catch (const RaisedError& error) {
        failure = error.Description();
    }
    if (failure.empty()) return;
    ShowMessageBox(L"プラグイン " + SusieCollection().NameOf(plugin.DllName()) +
                       L" の設定中にエラーが発生しました。\r\n" + failure,
                   MB_ICONEXCLAMATION);
}

std::wstring UnwritableFolderText(const std::wstring& plugin, const std::wstring& folder) {
    return L"プラグイン " + plugin + L" のあるフォルダには、書き込む権限がありません。\r\n" +
           folder +
           L"\r\n\r\n設定をこのフォルダのファイルに保存するプラグインでは、"
           L"変えた設定が残りません。その場合は、プラグインを次のフォルダに移してください。\r\n" +
           UserPluginFolder();
}

}  // namespace

void PluginPage::AttachControls() {
    GeneralSettings& general = Options().general;
    OptionFields& fields = Fields();
    fields.Check(checkUseSPI, general.useSPI);
    for (int i = 0; i < kPluginFolderCount; ++i) {
        fields.Check(checkLoadSPI_0 + i, general.loadSPI[i]);
        fields.Text(textSPIFolder_0 + i, general.spiFolder[i]);
        cmdSPIFolder_[i].Attach(Dialog(), cmdSPIFolder_0 + i);
        cmdSPIFolder_[i].OnClick([this, i] { cmdSPIFolder_Click(i); });
    }
    fields.Check(checkDynamicSPILoad, general.dynamicSPILoad);
    fields.Check(checkSPIExt, general.spiExt);
    fields.Number(textAskingSeconds, general.askingSeconds, 0, kMostAskingSeconds);
    fields.Number(textWorkingSeconds, general.workingSeconds, 0, kMostWorkingSeconds);

    listSPI_.Attach(Dialog(), listSPI);
    SetPluginColumns(listSPI_);
    listSPI_.OnSelect([this] { ShowSelection(); });
    listSPI_.OnDoubleClick([this] {
        if (cmdSPISetup_.IsEnabled()) cmdSPISetup_Click();
    });
    labelSPIEnds_.Attach(Dialog(), labelSPIEnds);
    listSPIError_.Attach(Dialog(), listSPIError);
    listSPIError_.SetColumns(kErrorColumns);
    cmdSPISetup_.Attach(Dialog(), cmdSPISetup);
    cmdSPISetup_.OnClick([this] { cmdSPISetup_Click(); });
    cmdSPIErrorClear_.Attach(Dialog(), cmdSPIErrorClear);
    cmdSPIErrorClear_.OnClick([this] { cmdSPIErrorClear_Click(); });
}

void PluginPage::ShowValues() {
    OptionPage::ShowValues();
    const PluginFacts* const selected = Selected();
    ShowPluginList(selected != nullptr ? selected->path : std::wstring());
}

void PluginPage::ShowState() {
    const GeneralSettings& general = Options().general;
    for (int i = 0; i < kPluginFolderCount; ++i) {
        Fields().SetEnabled({checkLoadSPI_0 + i}, general.useSPI != 0);
        Fields().SetEnabled({textSPIFolder_0 + i, cmdSPIFolder_0 + i},
                            general.useSPI != 0 && general.loadSPI[i]);
    }
    Fields().SetEnabled(
        {checkDynamicSPILoad, checkSPIExt, labelAskingSeconds, textAskingSeconds, labelAskingUnit,
         labelWorkingSeconds, textWorkingSeconds, labelWorkingUnit},
        general.useSPI != 0);
    ShowSelection();
}

const PluginFacts* PluginPage::Selected() const {
    const int index = listSPI_.Handle() != nullptr ? listSPI_.Selected() : -1;
    const bool isThere = index >= 0 && index < static_cast<int>(plugins_.size());
    return isThere ? &plugins_[static_cast<size_t>(index)] : nullptr;
}

void PluginPage::ShowPluginList(const std::wstring& selectedPath) {
    plugins_ = ListPlugins();
    ShowPlugins(listSPI_, plugins_);
    const auto selected = std::ranges::find(plugins_, selectedPath, &PluginFacts::path);
    if (!plugins_.empty()) {
        const bool isThere = selected != plugins_.end();
        listSPI_.Select(isThere ? static_cast<int>(selected - plugins_.begin()) : 0);
    }
    ShowSelection();
}

// After a button: it may have become useless, and a plug-in's window may have left the keys to
// nobody or to another window.
void PluginPage::GiveFocusBack(HWND control) {
    if (GetActiveWindow() != Dialog()) SetActiveWindow(Dialog());
    const bool isUsable = IsChild(Dialog(), control) && IsWindowEnabled(control) != FALSE;
    SendMessageW(Dialog(), WM_NEXTDLGCTL,
                 reinterpret_cast<WPARAM>(isUsable ? control : listSPI_.Handle()), TRUE);
}

void PluginPage::ShowSelection() {
    const PluginFacts* const selected = Selected();
    std::vector<ListView::Row> rows;
    if (selected != nullptr && selected->errors > 0) {
        for (const PluginErrors& error : ErrorsOf(*selected))
            rows.push_back({error.function, std::to_wstring(error.count)});
    }
    listSPIError_.SetRows(std::move(rows));
    labelSPIEnds_.SetText(selected != nullptr ? selected->ends : std::wstring());
    cmdSPISetup_.SetEnabled(selected != nullptr && selected->hasSettings);
    cmdSPIErrorClear_.SetEnabled(selected != nullptr &&
                                 (selected->errors > 0 || selected->isBarred));
}

void PluginPage::cmdSPIFolder_Click(int folder) {
    std::wstring& value = Options().general.spiFolder[folder];
    const std::wstring chosen =
        BrowseForFolder(Dialog(), L"プラグインフォルダの選択",
                        L"Susie Pluginのあるフォルダを指定してください。", value);
    if (chosen.empty() || chosen == value) return;
    value = chosen;
    Fields().Show();
    Changed();
}

// The system refuses such plug-ins, and they do not tell.
void PluginPage::TellUnwritableFolder(const std::wstring& plugin) {
    const std::wstring folder = FolderOf(plugin);
    if (MayPluginsWriteIn(folder) || !told_.insert(plugin).second) return;
    ShowMessageBox(UnwritableFolderText(SusieCollection().NameOf(plugin), folder),
                   MB_ICONINFORMATION);
}

// The plug-in's window lets messages run: what it is opened from stays as it is meanwhile.
void PluginPage::cmdSPISetup_Click() {
    const PluginFacts* const selected = Selected();
    if (selected == nullptr || PluginCallUnderWay()) return;
    const std::wstring path = selected->path;
    const HWND focus = GetFocus();
    TellUnwritableFolder(path);
    if (!IsWindow(Dialog())) return;
    if (clsSusie* const plugin = SusieCollection().Item(path)) {
        ShowSettingsOf(*plugin, Dialog());
    }
    if (!IsWindow(Dialog())) return;  // the session has ended meanwhile
    ShowPluginList(path);
    if (!IsForeign(GetActiveWindow())) GiveFocusBack(focus);
}

void PluginPage::cmdSPIErrorClear_Click() {
    const PluginFacts* const selected = Selected();
    if (selected == nullptr || PluginCallUnderWay()) return;
    const std::wstring path = selected->path;
    const HWND focus = GetFocus();
    try {
        if (selected->leftOut.empty()) {
            SusieCollection().ForgetErrors(listSPI_.Selected() + 1);
        } else {
            SusieCollection().ForgetErrorsOfLeftOut(path);
        }
    } catch (const RaisedError& error) {
        ShowMessageBox(error.Description(), MB_ICONEXCLAMATION);
    }
    hasForgiven_ = true;
    ShowPluginList(path);
    pluginsChanged_();
    Changed();  // a plug-in that waits now can be applied
    GiveFocusBack(focus);
}

}  // namespace tessary
