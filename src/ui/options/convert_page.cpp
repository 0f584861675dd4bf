#include "ui/options/convert_page.h"

#include <windows.h>
// The flags of file dialogs need the types of windows.h.
#include <commdlg.h>

#include "app/base/paths.h"
#include "app/settings/saver_format.h"
#include "convert/convert_log.h"
#include "res/resource.h"
#include "ui/dialogs/ComDlg.h"

namespace tessary {
namespace {

constexpr int kMostPixels = 999999999;

}  // namespace

void ConvertPage::AttachControls() {
    ConvertSettings& convert = Options().convert;
    OptionFields& fields = Fields();
    fields.Choice(combSaveType1, SaverFormatNames(), convert.saveType1);
    fields.Choice(combSaveType2, SaverFormatNames(), convert.saveType2);
    fields.Choice(
        combOnConflict,
        {L"別名で保存する", L"変換しない（スキップ）", L"上書きする", L"そのつど確認する"},
        convert.onConflict);
    fields.Check(checkKeepFolders, convert.keepFolders);
    fields.Check(checkSkipDamaged, convert.skipDamaged);
    fields.Choice(combJobs, {L"自動", L"1", L"2", L"3", L"4", L"5", L"6", L"7", L"8"},
                  convert.jobs);
    fields.Check(checkUnpackArchive, convert.unpackArchive);
    fields.Number(textArchiveDepth, convert.archiveDepth, 1, kMostArchiveDepth);
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
    cmdErrorLogFileName_.Attach(Dialog(), cmdErrorLogFileName);
    cmdErrorLogFileName_.OnClick([this] { cmdErrorLogFileName_Click(); });
    labelErrorLogPath_.Attach(Dialog(), labelErrorLogPath);
    fields.Check(checkOutputAddMode, convert.outputAddMode);
    fields.Check(checkConvertReduceColor, convert.reduceColor);
}

void ConvertPage::ShowState() {
    const ConvertSettings& convert = Options().convert;
    const OptionFields& fields = Fields();
    fields.SetEnabled({checkDecodeUnknownFile, labelArchiveDepth, textArchiveDepth},
                      convert.unpackArchive != 0);
    fields.SetEnabled({labelMinDecodeSizeX, textMinDecodeSizeX, labelMinDecodeSizeY,
                       textMinDecodeSizeY, labelMinDecodeSizeUnit, combDecodeFileSize},
                      convert.noDecodeSmall != 0);
    fields.SetEnabled({textDecodeFileMask, combDecodeFileMaskSet, labelDecodeFileMask},
                      convert.useDecodeFileMask != 0);
    fields.SetEnabled({labelErrorLogFileName, textErrorLogFileName, cmdErrorLogFileName,
                       labelErrorLogPath, checkOutputAddMode},
                      convert.outputErrorLog != 0);
    const std::wstring& name = convert.errorLogFileName;
    labelErrorLogPath_.SetText(IsLogName(name) ? LogPath(name)
                                               : L"ログファイルの名前を指定してください。");
}

std::wstring ConvertPage::Fault() {
    const ConvertSettings& convert = Options().convert;
    if (convert.outputErrorLog == 0 || IsLogName(convert.errorLogFileName)) return {};
    return L"変換ログをファイルに書き出すには、ログファイルの名前を指定してください。";
}

void ConvertPage::GoToFault() {
    ::SetFocus(GetDlgItem(Dialog(), textErrorLogFileName));
}

void ConvertPage::cmdErrorLogFileName_Click() {
    std::wstring& name = Options().convert.errorLogFileName;
    ComDlg dialog;
    dialog.SetFilter(L"ログファイル (*.log;*.txt)|*.log;*.txt|すべてのファイル|*.*|");
    dialog.SetInitDir(FolderOf(LogPath(IsLogName(name) ? name : std::wstring())));
    // A name that is none's yet will do.
    dialog.SetFlags(OFN_EXPLORER | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOREADONLYRETURN);
    if (!dialog.ShowOpen(Dialog()) || Dialog() == nullptr) return;
    name = dialog.FileName();
    ShowValues();
    Changed();
}

}  // namespace tessary
