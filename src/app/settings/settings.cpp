#include "app/settings/settings.h"

#include <windows.h>

#include <algorithm>
#include <type_traits>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "app/settings/plugin_folders.h"
#include "app/settings/saver_format.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"

namespace tessary {
namespace {

constexpr std::wstring_view kReadErrorText = L"レジストリの読み取りエラーです。";
constexpr std::wstring_view kWriteErrorText = L"レジストリの書き込みエラーです。";

// Takes a section's values out of the store, in the order of the calls.
class SectionReader {
  public:
    explicit SectionReader(std::wstring_view section) : section_(section) {}

    void operator()(std::wstring_view key, int16_t& value, std::wstring_view defaultText) const {
        value = ToInt16(GetSetting(section_, key, defaultText));
    }
    void operator()(std::wstring_view key, int32_t& value, std::wstring_view defaultText) const {
        value = ToInt32(GetSetting(section_, key, defaultText));
    }
    void operator()(std::wstring_view key, bool& value, std::wstring_view defaultText) const {
        value = ToBoolean(GetSetting(section_, key, defaultText));
    }
    void operator()(std::wstring_view key, std::wstring& value,
                    std::wstring_view defaultText) const {
        value = GetSetting(section_, key, defaultText);
    }

  private:
    std::wstring_view section_;
};

// Puts a section's values into the store; takes the same calls, so that one list of keys serves
// both ways.
class SectionWriter {
  public:
    explicit SectionWriter(std::wstring_view section) : section_(section) {}

    template <typename Value>
    void operator()(std::wstring_view key, const Value& value, std::wstring_view) const {
        if constexpr (std::is_same_v<Value, std::wstring>) {
            SaveSetting(section_, key, value);
        } else if constexpr (std::is_same_v<Value, bool>) {
            SaveSetting(section_, key, ToSettingText(value));
        } else {
            SaveSetting(section_, key, ToSettingText(static_cast<int32_t>(value)));
        }
    }

  private:
    std::wstring_view section_;
};

template <typename Section>
void TransferGeneral(const Section& transfer) {
    GeneralSettings& general = Values().general;
    const std::wstring appFolder = RemoveBackslash(AppFolder());
    transfer(L"UseSPI", general.useSPI, L"0");
    transfer(L"SPIFolder_1", general.spiFolder[0], L"");
    transfer(L"SPIFolder_2", general.spiFolder[1], L"");
    transfer(L"SPIFolder_3", general.spiFolder[2], L"");
    transfer(L"LoadSPI_1", general.loadSPI[0], L"True");
    transfer(L"LoadSPI_2", general.loadSPI[1], L"False");
    transfer(L"LoadSPI_3", general.loadSPI[2], L"False");
    transfer(L"SlideShowTime", general.slideShowTime, L"500");
    transfer(L"ReduceColor", general.reduceColor, L"0");
    transfer(L"Reduce256ModeOnly", general.reduce256ModeOnly, L"0");
    transfer(L"SaveReducedPicture", general.saveReducedPicture, L"0");
    transfer(L"ReduceType", general.reduceType, L"0");
    transfer(L"ReduceColorNum", general.reduceColorNum, L"256");
    transfer(L"ReduceQuality", general.reduceQuality, L"0");
    transfer(L"OpenPath", general.openPath, appFolder);
    transfer(L"SavePath", general.savePath, appFolder);
    transfer(L"DynamicSPILoad", general.dynamicSPILoad, L"0");
    transfer(L"SPIExt", general.spiExt, L"0");
    transfer(L"OpenFolderType", general.openFolderType, L"0");
    transfer(L"ReadAhead", general.readAhead, L"1");
    transfer(L"ReadAheadMemory", general.readAheadMemory, L"0");
    transfer(L"FixSizeValue", Values().fixSizeValue, L"0");
    transfer(L"EnlargeSmall", general.enlargeSmall, L"0");
    transfer(L"HoldBoxes", general.holdBoxes, L"0");
    transfer(L"KeepZoom", general.keepZoom, L"0");
    transfer(L"LinearLight", general.linearLight, L"0");
    transfer(L"DoubleClick", general.doubleClick, L"0");
    transfer(L"SizeButton", general.sizeButton, L"0");
    transfer(L"Backdrop", general.backdrop, L"0");
    transfer(L"PlayAnimation", general.playAnimation, L"1");
    transfer(L"ShowInfo", general.showInfo, L"0");
    transfer(L"ListNeighbours", general.listNeighbours, L"1");
    transfer(L"ListOrder", general.listOrder, L"0");
    transfer(L"ListDescending", general.listDescending, L"0");
    transfer(L"OrderSeed", general.orderSeed, L"1");
    transfer(L"Unclaimed", general.unclaimed, L"2");
    transfer(L"AtListEnd", general.atListEnd, L"1");
    transfer(L"BackToLast", general.backToLast, L"1");
    transfer(L"ListText", general.listText, L"0");
    transfer(L"FileLook", general.fileLook, L"0");
    transfer(L"MemberLook", general.memberLook, L"0");
    transfer(L"ThumbSize", general.thumbSize, L"1");
    transfer(L"ThumbMegabytes", general.thumbMegabytes, L"200");
    transfer(L"ShortList", general.shortList, L"0");
    transfer(L"ShowLoops", general.showLoops, L"0");
    transfer(L"ShowRandom", general.showRandom, L"0");
    transfer(L"SpaceScrolls", general.spaceScrolls, L"1");
    transfer(L"PlainTitle", general.plainTitle, L"0");
    transfer(L"NotePlace", general.notePlace, L"1");
    transfer(L"GoOnAtOnce", general.goOnAtOnce, L"0");
    transfer(L"BookArchives", general.bookArchives, L"0");
    transfer(L"BookFolders", general.bookFolders, L"0");
    transfer(L"BookFromRight", general.bookFromRight, L"1");
    transfer(L"BookCover", general.bookCover, L"1");
    transfer(L"DeleteFinally", general.deleteFinally, L"0");
    transfer(L"Appearance", general.appearance, L"0");
    transfer(L"EmptySPI_1", general.emptySPI[0], L"False");
    transfer(L"EmptySPI_2", general.emptySPI[1], L"False");
    transfer(L"EmptySPI_3", general.emptySPI[2], L"False");
    transfer(L"ProgramFolder", general.programFolder, L"");
    transfer(L"PluginAskingSeconds", general.askingSeconds, ToSettingText(int32_t{kAskingSeconds}));
    transfer(L"PluginWorkingSeconds", general.workingSeconds,
             ToSettingText(int32_t{kWorkingSeconds}));
}

template <typename Section>
void TransferFileFormat(const Section& transfer) {
    const auto each = [&](std::span<const SaverOption> options) {
        for (const SaverOption& option : options) {
            transfer(option.key, option.in(Values().saveOptions),
                     ToSettingText(int32_t{option.ValueIn({})}));
        }
    };
    for (const SaverFormat& format : SaverFormats())
        each(format.options);
    each(SharedSaverOptions());
}

void TransferConvertHead(const auto& transfer) {
    ConvertSettings& convert = Values().convert;
    const std::wstring appFolder = RemoveBackslash(AppFolder());
    transfer(L"OpenPath", convert.openPath, appFolder);
    transfer(L"SavePath", convert.savePath, appFolder);
    transfer(L"FileMask", convert.fileMask, L"*.*");
    transfer(L"SaveType1", convert.saveType1, L"0");
    transfer(L"SaveType2", convert.saveType2, L"0");
    transfer(L"UnpackArchive", convert.unpackArchive, L"1");
    transfer(L"NoDecodeSmall", convert.noDecodeSmall, L"0");
    transfer(L"MinDecodeSizeX", convert.minDecodeSizeX, L"0");
    transfer(L"MinDecodeSizeY", convert.minDecodeSizeY, L"0");
}

void TransferConvertMask(const auto& transfer) {
    ConvertSettings& convert = Values().convert;
    transfer(L"UseDecodeFileMask", convert.useDecodeFileMask, L"0");
    transfer(L"DecodeFileMask", convert.decodeFileMask, L"*.*");
    transfer(L"DecodeFileMaskSet", convert.decodeFileMaskSet, L"0");
}

void TransferConvertUnknown(const auto& transfer) {
    transfer(L"DecodeUnknownFile", Values().convert.decodeUnknownFile, L"0");
}

void TransferConvertTail(const auto& transfer, int16_t& outputErrorLog) {
    ConvertSettings& convert = Values().convert;
    transfer(L"ReduceColor", convert.reduceColor, L"0");
    transfer(L"OutputErrorLog", outputErrorLog, L"0");
    transfer(L"ErrorLogFileName", convert.errorLogFileName, L"");
    transfer(L"OutputAddMode", convert.outputAddMode, L"0");
    transfer(L"DecodeSizeBoth", convert.decodeSizeBoth, L"False");
    transfer(L"OnConflict", convert.onConflict, L"0");
    transfer(L"KeepFolders", convert.keepFolders, L"False");
    transfer(L"SkipDamaged", convert.skipDamaged, L"False");
    transfer(L"ArchiveDepth", convert.archiveDepth, L"3");
    transfer(L"Jobs", convert.jobs, L"0");
}

// Whoever has written another number by hand gets the choice that changes least, and the depth
// that is nearest.
void PutRight(ConvertSettings& convert) {
    if (convert.onConflict < kConflictFreeName || convert.onConflict > kConflictAsk) {
        convert.onConflict = kConflictFreeName;
    }
    convert.archiveDepth = std::clamp(convert.archiveDepth, 1, kMostArchiveDepth);
    convert.jobs = std::clamp(convert.jobs, 0, kMostJobs);
}

// Runs a transfer; whatever fails in it is told with `text` and yields false.
template <typename Body>
bool Transferred(std::wstring_view text, unsigned style, Body body) {
    try {
        body();
        return true;
    } catch (...) {
        ShowMessageBox(text, style);
        return false;
    }
}

}  // namespace

bool ReadGeneralSettings() {
    return Transferred(kReadErrorText, MB_OK, [] {
        TransferGeneral(SectionReader(L"General"));
        FollowProgram(Values().general);
        PutSecondsRight(Values().general);
        int16_t& way = Values().general.deleteFinally;
        if (way < kDeleteToBin || way > kLastDeleteWay) way = kDeleteToBin;
        int16_t& look = Values().general.appearance;
        if (look < 0 || look > kLastAppearance) look = 0;
        TransferFileFormat(SectionReader(L"FileFormat"));
    });
}

bool ReadConvertSettings() {
    return Transferred(kReadErrorText, MB_OK, [] {
        const SectionReader section(L"Convert");
        TransferConvertHead(section);
        TransferConvertMask(section);
        TransferConvertUnknown(section);
        TransferConvertTail(section, Values().convert.outputErrorLog);
        PutRight(Values().convert);
        TransferFileFormat(SectionReader(L"FileFormat"));
    });
}

bool WriteGeneralSettings() {
    return Transferred(kWriteErrorText, MB_OK, [] { TransferGeneral(SectionWriter(L"General")); });
}

bool WriteConvertSettings() {
    // The reading text on a failed write, and its three buttons, are what users of these messages
    // know.
    return Transferred(kReadErrorText, MB_ABORTRETRYIGNORE, [] {
        const SectionWriter section(L"Convert");
        // Unlike on reading, the unknown-file switch goes before the mask.
        TransferConvertHead(section);
        TransferConvertUnknown(section);
        TransferConvertMask(section);
        int16_t outputErrorLog = Values().convert.outputErrorLog;
        if (Values().logFileRefusal != 0) outputErrorLog = 1;
        TransferConvertTail(section, outputErrorLog);
        TransferFileFormat(SectionWriter(L"FileFormat"));
    });
}

}  // namespace tessary
