#include "ui/options/convert_page.h"

#include "res/resource.h"

namespace tessary {
namespace {

constexpr int kMostPixels = 999999999;

}  // namespace

void ConvertPage::AttachControls() {
    ConvertSettings& convert = Options().convert;
    OptionFields& fields = Fields();
    const auto formats = {L"BMP", L"PNG", L"JPEG"};
    fields.Choice(combSaveType1, formats, convert.saveType1);
    fields.Choice(combSaveType2, formats, convert.saveType2);
    fields.Check(checkUnpackArchive, convert.unpackArchive);
    fields.Check(checkDecodeUnknownFile, convert.decodeUnknownFile);
    fields.Check(checkNoDecodeSmall, convert.noDecodeSmall);
    fields.Number(textMinDecodeSizeX, convert.minDecodeSizeX, 0, kMostPixels);
    fields.Number(textMinDecodeSizeY, convert.minDecodeSizeY, 0, kMostPixels);
    fields.Choice(combDecodeFileSize,
                  {L"幅か高さのどちらかがこの値を超える画像を変換する",
                   L"幅と高さの両方がこの値を超える画像を変換する"},
                  convert.decodeSizeBoth);
    fields.Check(checkUseDecodeFileMask, convert.useDecodeFileMask);
    fields.Text(textDecodeFileMask, convert.decodeFileMask);
    fields.Choice(
        combDecodeFileMaskSet,
        {L"名前が一致するファイルだけを変換する", L"名前が一致しないファイルだけを変換する"},
        convert.decodeFileMaskSet);
    fields.Check(checkOutputErrorLog, convert.outputErrorLog);
    fields.Text(textErrorLogFileName, convert.errorLogFileName);
    fields.Check(checkOutputAddMode, convert.outputAddMode);
    fields.Check(checkConvertReduceColor, convert.reduceColor);
}

void ConvertPage::ShowState() {
    const ConvertSettings& convert = Options().convert;
    const OptionFields& fields = Fields();
    fields.SetEnabled({checkDecodeUnknownFile}, convert.unpackArchive != 0);
    fields.SetEnabled({labelMinDecodeSizeX, textMinDecodeSizeX, labelMinDecodeSizeY,
                       textMinDecodeSizeY, labelMinDecodeSizeUnit, combDecodeFileSize},
                      convert.noDecodeSmall != 0);
    fields.SetEnabled({textDecodeFileMask, combDecodeFileMaskSet, labelDecodeFileMask},
                      convert.useDecodeFileMask != 0);
    fields.SetEnabled({labelErrorLogFileName, textErrorLogFileName, checkOutputAddMode},
                      convert.outputErrorLog != 0);
}

}  // namespace tessary
