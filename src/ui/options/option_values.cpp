#include "ui/options/option_values.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "app/base/text.h"
#include "app/settings/saver_format.h"
#include "places/place_memory.h"

namespace tessary {
namespace {

void PutRight(GeneralSettings& general) {
    for (int16_t* const flag :
         {&general.useSPI,       &general.dynamicSPILoad,    &general.spiExt,
          &general.reduceColor,  &general.reduce256ModeOnly, &general.saveReducedPicture,
          &general.readAhead,    &general.enlargeSmall,      &general.holdBoxes,
          &general.keepZoom,     &general.linearLight,       &general.doubleClick,
          &general.sizeButton,   &general.listNeighbours,    &general.listDescending,
          &general.backToLast,   &general.shortList,         &general.plainTitle,
          &general.notePlace,    &general.showLoops,         &general.showRandom,
          &general.spaceScrolls, &general.goOnAtOnce}) {
        *flag = *flag == 1 ? 1 : 0;
    }
    general.listOrder = std::clamp<int16_t>(general.listOrder, 0, kOrderCount - 1);
    general.unclaimed = std::clamp(general.unclaimed, kUnclaimedListed, kUnclaimedHidden);
    general.atListEnd = std::clamp(general.atListEnd, kEndListed, kEndNextFolder);
    general.readAheadMemory = std::clamp(general.readAheadMemory, 0, kMostReadAheadMemory);
    general.backdrop = std::clamp(general.backdrop, kBackdropSquares, kLastBackdrop);
    general.openFolderType = general.openFolderType != 0 ? 1 : 0;
    general.slideShowTime = std::clamp<int16_t>(general.slideShowTime, 0, kMostSlideShowTime);
    general.reduceColorNum = std::clamp<int16_t>(general.reduceColorNum, 2, 256);
    general.reduceType = std::clamp<int16_t>(general.reduceType, 0, 2);
    general.reduceQuality = std::clamp<int16_t>(general.reduceQuality, 0, 2);
}

void PutRight(ConvertSettings& convert) {
    for (int16_t* const flag :
         {&convert.unpackArchive, &convert.noDecodeSmall, &convert.useDecodeFileMask,
          &convert.decodeFileMaskSet, &convert.decodeUnknownFile, &convert.reduceColor,
          &convert.outputErrorLog}) {
        *flag = *flag == 1 ? 1 : 0;
    }
    convert.outputAddMode = convert.outputAddMode != 0 ? 1 : 0;
    for (int32_t* const type : {&convert.saveType1, &convert.saveType2})
        *type = std::clamp(*type, 0, static_cast<int32_t>(SaverFormats().size()) - 1);
    for (int32_t* const size : {&convert.minDecodeSizeX, &convert.minDecodeSizeY})
        *size = std::max(*size, 0);
}

void PutRight(saving::SaveOptions& options) {
    for (const SaverFormat& format : SaverFormats()) {
        for (const SaverOption& option : format.options) {
            if (option.kind != SaverOption::Kind::kLevel) continue;
            option.in(options) = std::clamp<int16_t>(option.in(options), 0, option.most);
        }
    }
}

// A folder may have been pasted with the quotes of a copied path.
std::wstring PlainFolder(std::wstring folder) {
    std::erase(folder, L'"');
    return std::wstring(TrimSpaces(folder));
}

auto PluginPart(const GeneralSettings& general) {
    return std::tie(general.useSPI, general.dynamicSPILoad, general.spiExt, general.spiFolder[0],
                    general.spiFolder[1], general.spiFolder[2], general.loadSPI[0],
                    general.loadSPI[1], general.loadSPI[2]);
}

}  // namespace

OptionValues CurrentOptions() {
    const ProcessValues& values = Values();
    OptionValues options{
        .general = values.general,
        .convert = values.convert,
        .saveOptions = values.saveOptions,
        .fixSizeValue = std::clamp<int16_t>(values.fixSizeValue, kSizeModeOriginal, kLastSizeMode),
        .keys = ChosenKeys(),
        .remembers = IsRemembering()};
    // The user's own choice, which only rests.
    if (values.logFileRefusal != 0) options.convert.outputErrorLog = 1;
    PutRight(options.general);
    PutRight(options.convert);
    PutRight(options.saveOptions);
    return options;
}

void SetOptions(const OptionValues& options) {
    ProcessValues& values = Values();
    values.general = options.general;
    PutSecondsRight(values.general);
    for (std::wstring& folder : values.general.spiFolder)
        folder = PlainFolder(folder);
    const ConvertSettings former = std::exchange(values.convert, options.convert);
    const bool isSameLog = options.convert.outputErrorLog == 1 &&
                           options.convert.errorLogFileName == former.errorLogFileName;
    if (const uint32_t refusal = std::exchange(values.logFileRefusal, 0); refusal && isSameLog) {
        GiveUpLogFile(refusal);
    }
    values.saveOptions = options.saveOptions;
    values.fixSizeValue = options.fixSizeValue;
    if (options.keys != ChosenKeys()) ChooseKeys(options.keys);
    if (options.remembers != IsRemembering()) SetRemembering(options.remembers);
}

bool DifferInPlugins(const GeneralSettings& one, const GeneralSettings& other) {
    return PluginPart(one) != PluginPart(other);
}

}  // namespace tessary
