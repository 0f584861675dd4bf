// The options dialog: pages that edit a copy of the settings.
#pragma once

#include <array>
#include <functional>

#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"
#include "ui/form/tree_view.h"
#include "ui/options/convert_page.h"
#include "ui/options/display_page.h"
#include "ui/options/format_page.h"
#include "ui/options/key_page.h"
#include "ui/options/list_page.h"
#include "ui/options/option_values.h"
#include "ui/options/plugin_page.h"

namespace tessary {

constexpr int kPluginPage = 0;
constexpr int kConvertPage = 1;
constexpr int kDisplayPage = 2;
constexpr int kListPage = 3;
constexpr int kFormatPage = 4;
constexpr int kKeyPage = 5;

class frmOption final : private Dialog {
  public:
    // Makes edited values the program's; what they are then is what CurrentOptions tells. Windows
    // that it shows belong above `owner`.
    using Taker = std::function<void(const OptionValues& options, HWND owner)>;

    // `apply` is called whenever the user wants to have the values and keep the dialog.
    explicit frmOption(Taker apply);

    // Shows the program's settings, beginning with that page (k…Page), over `owner`. True after OK:
    // the caller is to take Options() then.
    bool Edit(HWND owner, int page);
    const OptionValues& Options() const { return options_; }
    bool HasForgiven() const { return pluginPage_.HasForgiven(); }

  private:
    void Dialog_Load() override;
    void Dialog_OK() override;
    void Dialog_Cancel() override;
    void AnchorControls();
    void ShowPage(int page);
    void ShowAll();
    void PluginsChanged();
    void Changed();
    void cmdApply_Click();
    bool AcceptsAll();

    Taker apply_;
    OptionValues before_;  // what was shown first, or applied last
    OptionValues options_;
    int page_ = kPluginPage;
    bool isIncomplete_ = false;  // CollectionSusie::IsIncomplete

    TreeView pages_;
    Button cmdApply_;
    PluginPage pluginPage_{options_, [this] { Changed(); }, [this] { PluginsChanged(); }};
    ConvertPage convertPage_{options_, [this] { Changed(); }};
    DisplayPage displayPage_{options_, [this] { Changed(); }};
    ListPage listPage_{options_, [this] { Changed(); }};
    FormatPage formatPage_{options_, [this] { Changed(); }};
    KeyPage keyPage_{options_, [this] { Changed(); }};
    std::array<OptionPage*, 6> all_{&pluginPage_, &convertPage_, &displayPage_,
                                    &listPage_,   &formatPage_,  &keyPage_};
};

}  // namespace tessary
