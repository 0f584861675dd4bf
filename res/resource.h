// The numbers of the program's resources. Read by the resource compiler too, so they are macros.
// Menus and their items are numbered under the names of their controls; the items of an array have
// numbers in a row.
#pragma once

#define iconApplication 1
#define menuMainWindow 100   // the menu bar
#define menuPopupWindow 101  // holds the pop-up menu
// Each holds the menu that drops down from a button of the control bar.
#define menuDisplaySizeWindow 102
#define menuOpenWindow 103
#define menuSaveWindow 104
#define acceleratorsMainWindow 110
#define acceleratorsClipboard 111

#define menuFile 1000
#define menuFileOpen 1001
#define menuOpenFolder 1002
#define menuFileSaveAs 1003
#define menuFileSaveAll 1004
#define menuFileConvertAll 1005
#define menuFileExit 1006

#define menuEdit 1100
#define menuEditCopy 1101
#define menuEditPaste 1102
#define menuEditClear 1103

#define menuView 1200
#define menuViewControlOwner 1201
#define menuViewControlBar 1202
#define menuControl_0 1210
#define menuControl_1 1211
#define menuControl_2 1212
#define menuControl_3 1213
#define menuControl_4 1214
#define menuControl_5 1215
#define menuViewWallpaperCenter 1220
#define menuViewWallpaperTile 1221
#define menuViewWallpaperEsc 1222

#define menuOption 1300
#define menuOptionSetup 1301
#define menuOptionSPIFolder_0 1310
#define menuOptionSPIFolder_1 1311
#define menuOptionSPIFolder_2 1312

#define menuHelp 1400
#define menuHelpAbout 1401
#define menuHelpSPIAbout 1402

#define menuPopup1 1500
#define menuPopupGraphicInfo 1501
#define menuPopupFileName 1502
#define menuPopupPluginName 1503
#define menuPopupGraphicSize 1504
#define menuPopupColorDepth 1505

// Commands of the control bar that stand in no menu of the main window.
#define commandDisplaySize 1600  // the next display size
#define commandDisplaySize_0 1610
#define commandDisplaySize_1 1611
#define commandDisplaySize_2 1612
#define commandDisplaySize_3 1613
#define commandDisplaySize_4 1614
#define commandAddToDeleteList 1620
#define commandCancelDelete 1621

#define dialogOpenFolder 200
#define dialogNewFolder 201
#define dialogDirList 202
#define dialogSaveOption 203

#define openFolderPath 2001
#define openFolderUp 2002
#define openFolderDrive 2003
#define openFolderList 2004
#define openFolderSubFolders 2005
#define openFolderExtensionsLabel 2006
#define openFolderExtensions 2007
#define openFolderHint 2008
#define openFolderMake 2009
#define openFolderNetwork 2010

#define newFolderName 2101

#define dirListFolder 2201
#define dirListCount 2202

// Three panels in the same place, one per format, each with its controls numbered in a row.
#define pictureOptionPanel_0 2300  // BMP
#define optionBMPFileTypeFrame 2301
#define optionBMPFileType_0 2302
#define optionBMPFileType_1 2303
#define checkRLE 2304
#define pictureOptionPanel_1 2320  // JPEG
#define labelJpegQuality 2321
#define valueJpegQuality 2322
#define sliderJpegQuality 2323
#define labelJpegQualityLow 2324
#define labelJpegQualityHigh 2325
#define checkJPEGOptimize 2326
#define checkJPEGProgressive 2327
#define pictureOptionPanel_2 2340  // PNG
#define labelPNGQuality 2341
#define valuePNGQuality 2342
#define sliderPNGQuality 2343
#define labelPNGQualityLow 2344
#define labelPNGQualityHigh 2345
#define checkPNGInterless 2346
#define pictureOptionPanelsEnd 2360
