#include "ui/options/format_page.h"

#include "res/resource.h"
#include "ui/dialogs/frmSaveOption.h"

namespace tessary {
namespace {

std::wstring Described(const saving::BmpSaveOptions& options) {
    if (options.saveType == 1) return L"OS/2形式";
    return options.saveRLE != 0 ? L"Windows形式、RLE圧縮" : L"Windows形式、圧縮なし";
}

std::wstring Described(const saving::JpegSaveOptions& options) {
    std::wstring text = L"品質 " + std::to_wstring(options.quality);
    if (options.optimizedHuffman != 0) text += L"、最適化";
    if (options.progressive != 0) text += L"、プログレッシブ";
    return text;
}

std::wstring Described(const saving::PngSaveOptions& options) {
    std::wstring text = L"圧縮率 " + std::to_wstring(options.quality);
    if (options.interlace != 0) text += L"、インターレス";
    return text;
}

}  // namespace

void FormatPage::AttachControls() {
    for (int format = 0; format < 3; ++format) {
        cmdFileFormatEnv_[format].Attach(Dialog(), cmdFileFormatEnv_0 + format);
        cmdFileFormatEnv_[format].OnClick([this, format] { cmdFileFormatEnv_Click(format); });
        labelFileFormat_[format].Attach(Dialog(), labelFileFormat_0 + format);
    }
    GeneralSettings& general = Options().general;
    OptionFields& fields = Fields();
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
    labelFileFormat_[0].SetText(Described(Options().bmpSave));
    labelFileFormat_[1].SetText(Described(Options().jpegSave));
    labelFileFormat_[2].SetText(Described(Options().pngSave));
}

void FormatPage::ShowState() {
    Fields().SetEnabled({checkReduce256ModeOnly, checkSaveReducedPicture, labelReduceColorNum,
                         textReduceColorNum, labelReduceColorNumUnit, labelReduceType,
                         combReduceType, labelReduceQuality, combReduceQuality},
                        Options().general.reduceColor != 0);
}

void FormatPage::cmdFileFormatEnv_Click(int format) {
    frmSaveOption dialog;
    OptionValues& options = Options();
    const bool confirmed = format == 0   ? dialog.EditBMP(Dialog(), options.bmpSave)
                           : format == 1 ? dialog.EditJPEG(Dialog(), options.jpegSave)
                                         : dialog.EditPNG(Dialog(), options.pngSave);
    if (!confirmed) return;
    ShowFormats();
    Changed();
}

}  // namespace tessary
