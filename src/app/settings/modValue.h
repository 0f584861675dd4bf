// Everything the user has chosen, and the few values that the whole process shares: one set, filled
// at start-up and written back at shutdown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "app/settings/listing_rules.h"
#include "helpers/saving/save_options.h"

namespace tessary {

constexpr int kPluginFolderCount = 3;

// How many seconds a plug-in may give no sign of life, and how many may be chosen.
constexpr int16_t kAskingSeconds = 2;    // when it is asked what it reads
constexpr int16_t kWorkingSeconds = 20;  // at anything else
constexpr int16_t kMostAskingSeconds = 60;
constexpr int16_t kMostWorkingSeconds = 3600;

// What a double click on the picture does.
constexpr int16_t kDoubleClickZooms = 0;  // between 100 % and the whole picture
constexpr int16_t kDoubleClickFullScreen = 1;

// What is seen through pictures with transparency.
constexpr int16_t kBackdropSquares = 0;  // a chequerboard
constexpr int16_t kBackdropWhite = 1;
constexpr int16_t kBackdropBlack = 2;
constexpr int16_t kBackdropGrey = 3;
constexpr int16_t kLastBackdrop = kBackdropGrey;

// The display size modes that a click on the control bar's button goes round.
constexpr int16_t kSizeButtonAll = 0;
constexpr int16_t kSizeButtonFixed = 1;  // from 0 to 4

// Where a step leads that goes beyond the last file, or the first.
constexpr int16_t kEndListed = 0;  // to the last file, whatever it is; from the first, to none
constexpr int16_t kEndStays = 1;   // nowhere, and the user is told
constexpr int16_t kEndGoesRound = 2;
constexpr int16_t kEndNextFolder = 3;  // into the folder beside that of the file

// What becomes of files that are deleted.
constexpr int16_t kDeleteToBin = 0;
constexpr int16_t kDeleteListed = 1;   // they are collected, and deleted for good together
constexpr int16_t kDeleteForGood = 2;  // and the user is asked in words that say so
constexpr int16_t kLastDeleteWay = kDeleteForGood;
// The colours of the program, by `Appearance` of ui/form/appearance.h.
constexpr int16_t kLastAppearance = 2;
// What stands for a file in the list of them.
constexpr int16_t kListNames = 0;
constexpr int16_t kListPaths = 1;  // the full path

// What a list shows of its entries.
constexpr int16_t kLookNames = 0;
constexpr int16_t kLookBoth = 1;  // small pictures with the names below
constexpr int16_t kLookPictures = 2;
constexpr int16_t kLastLook = kLookPictures;
// How large the small pictures are, in pixels at 96 dpi.
constexpr int kThumbSides[] = {96, 128, 192};

// Settings of the section `General`, but for the display size mode.
struct GeneralSettings {
    int16_t useSPI = 0;                          // 1: use Susie plug-ins
    std::wstring spiFolder[kPluginFolderCount];  // plug-in folders
    bool loadSPI[kPluginFolderCount] = {true, false, false};
    // Not the user has switched that folder off but the program, for there was no plug-in: it is
    // looked into all the same, and switched on when there is one.
    bool emptySPI[kPluginFolderCount] = {};
    std::wstring programFolder;      // where the program was when the folders were stored
    std::wstring leftProgramFolder;  // the same where it is not any more, else empty; never stored
    int16_t slideShowTime = 500;     // milliseconds
    int16_t reduceColor = 0;
    int16_t reduce256ModeOnly = 0;
    int16_t saveReducedPicture = 0;
    int16_t reduceType = 0;
    int16_t reduceColorNum = 256;
    int16_t reduceQuality = 0;
    std::wstring openPath;        // last folder used for opening
    std::wstring savePath;        // last folder used for saving
    int16_t dynamicSPILoad = 0;   // 1: load plug-in libraries only when needed
    int16_t spiExt = 0;           // 1: choose plug-ins by file name alone
    int16_t openFolderType = 0;   // 0: the classic folder dialog, else the system's
    int16_t readAhead = 1;        // 1: pictures are read before they are asked for
    int32_t readAheadMemory = 0;  // megabytes that may be kept of them; 0: as there is room
    int16_t enlargeSmall = 0;     // 1: pictures that are smaller than their box are enlarged to it
    int16_t holdBoxes = 0;        // 1: a fixed box is no larger than the window
    int16_t keepZoom = 0;         // 1: a zoom stays with the next picture
    int16_t linearLight = 0;      // 1: resizing mixes light, not the stored levels
    int16_t doubleClick = kDoubleClickZooms;
    int16_t sizeButton = kSizeButtonAll;
    int16_t backdrop = kBackdropSquares;
    int16_t playAnimation = 1;   // 1: animations play as soon as they are shown
    int16_t showInfo = 0;        // 1: what is known of the picture stands beside it
    int16_t listNeighbours = 1;  // 1: a file that is opened alone brings those of its folder along
    int16_t listOrder = 0;       // OrderBy
    int16_t listDescending = 0;  // 1: the other way round
    int32_t orderSeed = 1;       // of the random order
    int16_t unclaimed = kUnclaimedHidden;
    int16_t atListEnd = kEndStays;
    int16_t backToLast = 1;  // 1: a step back into an archive leads to its last picture
    int16_t listText = kListNames;
    int16_t fileLook = kLookNames;    // of the list of files
    int16_t memberLook = kLookNames;  // of the list of members
    int16_t thumbSize = 1;            // kThumbSides
    int32_t thumbMegabytes = 200;     // on the disk; 0: none are kept there
    int16_t shortList = 0;            // 1: lists end at kShortListCount entries
    int16_t showLoops = 0;            // 1: a slide show goes round at the ends
    int16_t showRandom = 0;           // 1: it goes through the files in random order
    int16_t spaceScrolls = 1;         // 1: Space goes through a picture before it leads to the next
    int16_t plainTitle = 0;           // 1: the title does not tell what is shown
    int16_t notePlace = 1;            // 1: on the full screen each step tells name and place
    int16_t goOnAtOnce = 0;           // 1: what is opened once more is shown where the user stopped
    int16_t bookArchives = 0;   // 1: archives that nothing else was chosen for are read as books
    int16_t bookFolders = 0;    // the same of folders
    int16_t bookFromRight = 1;  // 1: their next page lies on the left
    int16_t bookCover = 1;      // 1: the first page stands alone
    int16_t deleteFinally = kDeleteToBin;
    int16_t appearance = 0;  // 0: as the system has it
    int16_t askingSeconds = kAskingSeconds;
    int16_t workingSeconds = kWorkingSeconds;

    bool operator==(const GeneralSettings&) const = default;
};

// What transparent pixels are laid over where there is no chequerboard: as it is chosen for the
// view, white in its place.
dib::Backdrop FlatBackdrop(const GeneralSettings& general);

// Puts the numbers of seconds right that somebody has typed: 0 and less stand for the default.
void PutSecondsRight(GeneralSettings& general);

// What the converter does where a file of the name that it would write is there already: a value
// of ConvertSettings::onConflict.
constexpr int32_t kConflictFreeName = 0;   // spares sources and results of the run: ` (2)`
constexpr int32_t kConflictSkip = 1;       // leaves it as it is
constexpr int32_t kConflictOverwrite = 2;  // replaces whatever is there
constexpr int32_t kConflictAsk = 3;        // asks the user, where there is one

constexpr size_t kShortListCount = 32002;

constexpr int32_t kMostReadAheadMemory = 99999;

constexpr int32_t kMostArchiveDepth = 99;
constexpr int32_t kMostJobs = 8;

// Settings of the section `Convert`.
struct ConvertSettings {
    std::wstring openPath;
    std::wstring savePath;
    std::wstring fileMask;
    int32_t saveType1 = 0;
    int32_t saveType2 = 0;
    int16_t unpackArchive = 1;
    int16_t noDecodeSmall = 0;
    int32_t minDecodeSizeX = 0;
    int32_t minDecodeSizeY = 0;
    int16_t useDecodeFileMask = 0;
    std::wstring decodeFileMask;
    int16_t decodeFileMaskSet = 0;
    int16_t decodeUnknownFile = 0;
    int16_t reduceColor = 0;
    int16_t outputErrorLog = 0;
    std::wstring errorLogFileName;
    int16_t outputAddMode = 0;
    bool decodeSizeBoth = false;  // both sides must exceed the size filter's limits, not either
    int32_t onConflict = kConflictFreeName;
    bool keepFolders = false;  // the sources' folders are made anew in the target folder
    bool skipDamaged = false;  // nothing is written for pictures that could not be read whole
    int32_t jobs = 0;  // how many files are read at the same time; 0: as it suits the machine
    int32_t archiveDepth = 3;  // archives in archives are expanded down to this level; 1: no others

    bool operator==(const ConvertSettings&) const = default;
};

// How the shown picture is sized: 0 as it is, 1 to 3 into a fixed box, 4 into the screen's work
// area, 5 into the window, 6 to the window's width.
constexpr int16_t kSizeModeOriginal = 0;
constexpr int16_t kSizeMode640 = 1;
constexpr int16_t kSizeMode800 = 2;
constexpr int16_t kSizeMode1024 = 3;
constexpr int16_t kSizeModeScreen = 4;
constexpr int16_t kSizeModeWindow = 5;
constexpr int16_t kSizeModeWidth = 6;
constexpr int16_t kLastSizeMode = kSizeModeWidth;

// The values of the whole process. Touched by the user-interface thread only.
struct ProcessValues {
    GeneralSettings general;
    ConvertSettings convert;
    saving::SaveOptions saveOptions;
    int16_t fixSizeValue = kSizeModeOriginal;

    // Files for a moment go to the user's temporary folder: beside the program they would be sent
    // to a cloud, or one was refused. Nothing: that was not asked yet.
    std::optional<bool> avoidsProgramFolder;
    // Why the conversion log's file could not be opened, as the system's error; 0: it was not given
    // up.
    uint32_t logFileRefusal = 0;
};

// The one instance.
ProcessValues& Values();

// The save options as the user has chosen them now, with what belongs to them elsewhere.
saving::SaveOptions ChosenSaveOptions();

// The conversion log's file could not be opened: convert.outputErrorLog is 0 until the program ends
// or the user chooses anew, and the store keeps the user's 1.
void GiveUpLogFile(uint32_t error);

}  // namespace tessary
