#include "ui/options/format_page.h"

#include "res/resource.h"
#include "ui/dialogs/frmSaveOption.h"

namespace tessary {

void FormatPage::AttachControls() {
    rows_.clear();
    for (const SaverFormat& format : SaverFormats()) {
        Row& row = rows_.emplace_back(format);
        row.button.Attach(Dialog(), cmdFileFormatEnv_0 + format.page);
        row.button.OnClick([this, &format] { cmdFileFormatEnv_Click(format); });
        row.label.Attach(Dialog(), labelFileFormat_0 + format.page);
    }
    GeneralSettings& general = Options().general;
    OptionFields& fields = Fields();
    fields.Check(checkKeepDates, Options().saveOptions.keepDates);
    fields.Check(checkReduceColor, general.reduceColor);
    fields.Check(checkReduce256ModeOnly, general.reduce256ModeOnly);
    fields.Check(checkSaveReducedPicture, general.saveReducedPicture);
    fields.Number(textReduceColorNum, general.reduceColorNum, 2, 256);
    fields.Choice(combReduceType, {L"最適パレット", L"固定パレット", L"グレースケール"},
                  general.reduceType);
    fields.Choice(combReduceQuality, {L"速度優先", L"標準", L"画質優先"}, general.reduceQuality);
}

void FormatPage::ShowValues() {
    OptionPage::ShowValues();
    ShowFormats();
}

void FormatPage::ShowFormats() {
    for (Row& row : rows_)
        row.label.SetText(row.format.described(Options().saveOptions));
}

void FormatPage::ShowState() {
    Fields().SetEnabled({checkReduce256ModeOnly, checkSaveReducedPicture, labelReduceColorNum,
                         textReduceColorNum, labelReduceColorNumUnit, labelReduceType,
                         combReduceType, labelReduceQuality, combReduceQuality},
                        Options().general.reduceColor != 0);
}

void FormatPage::cmdFileFormatEnv_Click(const SaverFormat& format) {
    if (!frmSaveOption().Edit(Dialog(), format, Options().saveOptions)) return;
    ShowValues();  // one of them is on the page too
    Changed();
}

}  // namespace tessary
