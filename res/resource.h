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
#define menuBarWindow 105  // holds the control bar's own
#define menuListWindow 106  // of an entry of the list of files
#define menuMembersWindow 107
#define acceleratorsMainWindow 110
#define acceleratorsClipboard 111

#define menuFile 1000
#define menuFileOpen 1001
#define menuOpenFolder 1002
#define menuFileSaveAs 1003
#define menuFileSaveAll 1004
#define menuFileConvertAll 1005
#define menuFileExit 1006
#define menuRecent 1020  // what was opened lately
#define commandRecent_0 1021  // so many in a row: kMostRecent
#define commandGoOn 1040
#define commandLastRun 1041
#define commandForget 1042
#define commandMemoryChanged 1043  // told when the options have changed what is remembered

#define menuEdit 1100
#define menuEditCopy 1101
#define menuEditPaste 1102
#define menuEditClear 1103
#define commandAddToDeleteList 1110
#define commandCancelDelete 1111
#define commandDelete 1112
#define commandDeleteForGood 1113
#define commandUndo 1114
#define commandRename 1115
#define commandCopyPath 1116
#define commandShowInFolder 1117
#define commandChooseAll 1118
#define commandMarkFile 1119  // the file in view, and on to the next
#define commandMoveTo 1120
#define commandCopyTo 1121

#define menuView 1200
#define menuViewControlOwner 1201
#define menuViewControlBar 1202
#define menuDock 1203
#define commandDock_0 1204  // by DockSide
#define commandDock_1 1205
#define commandDock_2 1206
#define commandDock_3 1207
#define commandDock_4 1208
#define menuControl_0 1210
#define menuControl_1 1211
#define menuControl_2 1212
#define menuControl_3 1213
#define menuControl_4 1214
#define menuControl_5 1215
#define menuViewWallpaperCenter 1220
#define menuViewWallpaperTile 1221
#define menuViewWallpaperEsc 1222
#define commandStepForward 1230
#define commandStepBack 1231
#define commandOrder_0 1232  // by OrderBy
#define commandOrder_1 1233
#define commandOrder_2 1234
#define commandOrder_3 1235
#define commandOrder_4 1236
#define commandOrder_5 1237
#define commandOrderDescending 1238
#define menuListLook 1639
#define commandFileLook_0 1630
#define commandFileLook_1 1631
#define commandFileLook_2 1632
#define commandMemberLook_0 1633
#define commandMemberLook_1 1634
#define commandMemberLook_2 1635
#define commandThumbSize_0 1636
#define commandThumbSize_1 1637
#define commandThumbSize_2 1638
#define commandListPaths 1286  // full paths in the list of files
#define menuOrder 1239
#define menuDisplaySize 1240
#define commandDisplaySize_0 1241
#define commandDisplaySize_1 1242
#define commandDisplaySize_2 1243
#define commandDisplaySize_3 1244
#define commandDisplaySize_4 1245
#define commandDisplaySize_5 1246
#define commandDisplaySize_6 1247
#define commandDisplaySize 1248  // the next display size
#define commandFullScreen 1250
#define commandFirstFile 1251  // or member
#define commandLastFile 1252
#define commandReadOn 1253  // scrolls on, then steps
#define commandReadBack 1254
#define commandPauseMotion 1255  // of the player
#define commandZoomIn 1260
#define commandZoomOut 1261
#define commandToggleFit 1262  // 100 %, or the whole picture in the window
#define commandEnlargeSmall 1263
#define menuTurn 1264
#define commandTurnRight 1265
#define commandTurnLeft 1266
#define commandTurnHalf 1267
#define commandMirror 1268
#define commandFlip 1269
#define menuBackdrop 1270
#define commandBackdrop_0 1271
#define commandBackdrop_1 1272
#define commandBackdrop_2 1273
#define commandBackdrop_3 1274
#define commandBackdrop 1275  // the next one
#define menuFrames 1280
#define commandPauseFrames 1281
#define commandNextFrame 1282
#define commandFormerFrame 1283
#define commandFirstFrame 1284
#define commandPlayAnimations 1285

#define menuBook 1291
#define commandBook 1292  // two pages at a time
#define commandBookFromRight 1293
#define commandBookCover 1294  // alone
#define commandBookShift 1295  // by one page
#define commandShowInfo 1290
#define commandTurnFile 1276  // the file as it is seen

#define menuAppearance 1380
#define commandAppearance_0 1381  // by Appearance
#define commandAppearance_1 1382
#define commandAppearance_2 1383
#define menuOption 1300
#define menuOptionSetup 1301
#define menuOptionSPIFolder_0 1310
#define menuOptionSPIFolder_1 1311
#define menuOptionSPIFolder_2 1312

#define menuBookmarks 4000
#define menuDropBookmark 4001
#define commandToggleBookmark 4002
#define commandBookmark_0 4100  // so many in a row: kMostBookmarks
#define commandDropBookmark_0 4200

#define menuHelp 1400
#define menuHelpAbout 1401
#define menuHelpSPIAbout 1402

#define menuPopup1 1500
#define menuPopupGraphicInfo 1501
#define menuPopupFileName 1502
#define menuPopupPluginName 1503
#define menuPopupGraphicSize 1504
#define menuPopupColorDepth 1505

// Commands of keys alone.
#define commandEscape 1600  // out of the full screen, else stops a search, else commandCancelDelete
#define commandOtherWindow 1601  // the keyboard to the control bar, or back to the main window

#define dialogOpenFolder 200
#define dialogNewFolder 201
#define dialogDirList 202
#define dialogSaveOption 203
#define dialogConvertAll 204
#define dialogProgress 205
#define dialogConflict 206
#define dialogRename 207
#define dialogTransfer 208
#define dialogOption 210
#define dialogAbout 211
#define dialogSPIAbout 212

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

#define renameName 2205

#define transferSubject 2220  // what is moved or copied
#define transferLabel 2221
#define transferFolders 2222
#define transferBrowse 2223
#define transferDrop 2224
#define transferHint 2225
#define transferTarget 2226

#define progressSubject 2211
#define progressBar 2212

// The panels of the save options, one per row of the page of formats, each with so many numbers for
// its controls in the order in which the dialog makes them.
#define kPictureOptionPanelIds 20
#define pictureOptionPanel_0 2300  // BMP
#define optionBMPFileType_0 2302
#define optionBMPFileType_1 2303
#define checkRLE 2304
#define pictureOptionPanel_1 2320  // JPEG
#define sliderJpegQuality 2322
#define valueJpegQuality 2323
#define checkJPEGOptimize 2326
#define checkJPEGProgressive 2327
#define pictureOptionPanel_2 2340  // PNG
#define sliderPNGQuality 2342
#define valuePNGQuality 2343
#define checkPNGInterless 2346
#define checkPNGExif 2347
#define checkPNGKeepDates 2350

// Two views in the same place, each with its controls numbered in a row.
#define frameSetOption 2400  // the settings
#define labelConvertFiles 2401
#define listConvertFiles 2402
#define cmdAddFile 2403
#define cmdAddFolder 2404
#define cmdDelete 2405
#define cmdDeleteAll 2406
#define Command3 2407
#define labelConvertCount 2408
#define labelConvertFolder 2409
#define textConvertFolder 2410
#define cmdConvertFolder 2411
#define labelConvertIndexcolor 2412
#define combConvertIndexcolor 2413
#define labelConvertFullcolor 2414
#define combConvertFullcolor 2415
#define labelOnConflict 2416
#define combConvertOnConflict 2417
#define checkConvertKeepFolders 2418
#define checkConvertSkipDamaged 2419
#define labelConvertMissing 2420  // why the run cannot begin
#define frameSetOptionEnd 2421
#define frameShowConvertStatus 2430  // the status
#define labelTotal 2431
#define lblTime 2432
#define lblRateTotal 2433
#define progressTotal 2434
#define labelCurrentFile 2435
#define progressCurrentFile 2436
#define lblResult 2437
#define optionConvertLog 2438  // which of the two lists is shown
#define optionConvertProblems 2439
#define listConvertLog 2440
#define listConvertProblems 2441
#define frameShowConvertStatusEnd 2442
#define cmdRunConvert 2450

#define conflictQuestion 2460
#define conflictSource 2461
#define conflictTarget 2462
#define conflictFreeName 2463
#define conflictReplace 2464
#define conflictSkip 2465
#define conflictForAll 2466
#define conflictSourceLabel 2467
#define conflictTargetLabel 2468

// The pages lie in the same place. A page's controls are those from its heading up to the next
// one's; the buttons stand behind the last.
#define optionPages 3000  // the list of the pages
#define optionPageLine 3001
#define optionPage_0 3002  // the headings
#define optionPage_1 3003
#define optionPage_2 3004
#define optionPage_3 3005
#define optionPage_4 3006
#define optionPage_5 3007
#define cmdApply 3008

#define checkUseSPI 3100
#define checkLoadSPI_0 3101
#define checkLoadSPI_1 3102
#define checkLoadSPI_2 3103
#define textSPIFolder_0 3104
#define textSPIFolder_1 3105
#define textSPIFolder_2 3106
#define cmdSPIFolder_0 3107
#define cmdSPIFolder_1 3108
#define cmdSPIFolder_2 3109
#define checkDynamicSPILoad 3110
#define checkSPIExt 3111
#define labelSPI 3112
#define listSPI 3113
#define labelSPIError 3114
#define listSPIError 3115
#define cmdSPISetup 3116
#define cmdSPIErrorClear 3117
#define labelSPIEnds 3118
#define labelAskingSeconds 3119
#define textAskingSeconds 3120
#define labelAskingUnit 3121
#define labelWorkingSeconds 3122
#define textWorkingSeconds 3123
#define labelWorkingUnit 3124

#define combSaveType1 3200
#define combSaveType2 3201
#define checkUnpackArchive 3202
#define checkDecodeUnknownFile 3203
#define checkNoDecodeSmall 3204
#define labelMinDecodeSizeX 3205
#define textMinDecodeSizeX 3206
#define labelMinDecodeSizeY 3207
#define textMinDecodeSizeY 3208
#define labelMinDecodeSizeUnit 3209
#define combDecodeFileSize 3210
#define checkUseDecodeFileMask 3211
#define textDecodeFileMask 3212
#define combDecodeFileMaskSet 3213
#define labelDecodeFileMask 3214
#define checkConvertReduceColor 3215
#define checkOutputErrorLog 3216
#define labelErrorLogFileName 3217
#define textErrorLogFileName 3218
#define checkOutputAddMode 3219
#define cmdErrorLogFileName 3220
#define labelErrorLogPath 3221
#define combOnConflict 3222
#define checkKeepFolders 3223
#define checkSkipDamaged 3224
#define labelArchiveDepth 3225
#define textArchiveDepth 3226
#define combJobs 3227

#define checkListNeighbours 3350
#define combListOrder 3351
#define checkListDescending 3352
#define combUnclaimed 3353
#define checkShortList 3354
#define combAtListEnd 3355
#define checkBackToLast 3356
#define checkSpaceScrolls 3357
#define checkRemember 3358
#define checkGoOnAtOnce 3359
#define combDeleteFinally 3360

#define listKeys 3370
#define labelNewKey 3371
#define textNewKey 3372
#define labelKeyUse 3373
#define cmdAssignKey 3374
#define cmdDropKeys 3375
#define cmdUsualKeys 3376
#define cmdAllUsualKeys 3377

#define sliderSlideShowTime 3300
#define labelSlideShowTime 3301
#define combFixSizeValue 3302
#define optionOpenFolderType_0 3303
#define optionOpenFolderType_1 3304
#define checkReadAhead 3305
#define labelReadAheadMemory 3306
#define textReadAheadMemory 3307
#define labelReadAheadMemoryUnit 3308
#define checkEnlargeSmall 3309
#define checkHoldBoxes 3310
#define checkKeepZoom 3311
#define checkSizeButton 3312
#define combDoubleClick 3313
#define checkPlayAnimation 3314
#define checkLinearLight 3315
#define checkPlainTitle 3317
#define checkNotePlace 3318
#define checkShowLoops 3319
#define checkShowRandom 3320

// One of each for every row of the page of formats; further ones follow.
#define cmdFileFormatEnv_0 3400
#define cmdFileFormatEnv_1 3401
#define cmdFileFormatEnv_2 3402
#define labelFileFormat_0 3450
#define labelFileFormat_1 3451
#define labelFileFormat_2 3452
#define checkKeepDates 3409
#define checkReduceColor 3410
#define checkReduce256ModeOnly 3411
#define checkSaveReducedPicture 3412
#define labelReduceColorNum 3413
#define textReduceColorNum 3414
#define labelReduceColorNumUnit 3415
#define labelReduceType 3416
#define combReduceType 3417
#define labelReduceQuality 3418
#define combReduceQuality 3419

#define aboutIcon 3500
#define aboutName 3501
#define aboutVersion 3502
#define aboutBuild 3503
#define aboutLibraries 3504
#define aboutLicence 3505

#define aboutPluginList 3600
#define aboutPluginFacts 3601
#define aboutPluginCopy 3602
#define aboutPluginCount 3603
