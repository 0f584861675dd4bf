#include "ui/options/frmSPIAbout.h"

#include <algorithm>
#include <string>

#include "res/resource.h"
#include "ui/form/clipboard.h"

namespace tessary {
namespace {

std::wstring CountText(const std::vector<PluginFacts>& plugins) {
    const auto leftOut = std::ranges::count_if(plugins, [](const PluginFacts& plugin) {
        return !plugin.leftOut.empty() && !plugin.isFolder;
    });
    const auto loaded = std::ranges::count_if(
        plugins, [](const PluginFacts& plugin) { return plugin.leftOut.empty(); });
    std::wstring text = loaded == 0 ? L"使用できるプラグインはありません"
                                    : std::to_wstring(loaded) + L"個のプラグイン（試す順）";
    if (leftOut > 0) text += L"、使用できないファイル " + std::to_wstring(leftOut) + L"個";
    return text;
}

}  // namespace

frmSPIAbout::frmSPIAbout() : Dialog(dialogSPIAbout) {}

void frmSPIAbout::Dialog_Load() {
    Anchor(aboutPluginList, kAnchorWidth | kAnchorHeight);
    Anchor(aboutPluginFacts, kAnchorWidth | kAnchorBottom);
    Anchor(aboutPluginCopy, kAnchorLeft | kAnchorBottom);
    Anchor(IDOK, kAnchorRight | kAnchorBottom);

    plugins_ = ListPlugins();
    count_.Attach(Handle(), aboutPluginCount);
    count_.SetText(CountText(plugins_));
    facts_.Attach(Handle(), aboutPluginFacts);
    list_.Attach(Handle(), aboutPluginList);
    SetPluginColumns(list_);
    ShowPlugins(list_, plugins_);
    list_.OnSelect([this] { ShowSelection(); });
    list_.Select(plugins_.empty() ? -1 : 0);
    list_.SetFocus();
    copy_.Attach(Handle(), aboutPluginCopy);
    copy_.SetEnabled(!plugins_.empty());
    copy_.OnClick([this] { aboutPluginCopy_Click(); });
}

void frmSPIAbout::ShowSelection() {
    const int index = list_.Selected();
    const bool isThere = index >= 0 && index < static_cast<int>(plugins_.size());
    facts_.SetText(isThere ? DescribePlugin(plugins_[static_cast<size_t>(index)]) : L"");
}

void frmSPIAbout::aboutPluginCopy_Click() {
    std::wstring text;
    for (const PluginFacts& plugin : plugins_)
        text += DescribePlugin(plugin) + L"\r\n";
    CopyTextToClipboard(Handle(), text);
}

}  // namespace tessary
