// The entries of convertdib.dll, which reads and writes bitmap files. Shared by the library and its
// callers, who load it and find the entries by name.
#pragma once

#include <windows.h>

#include "helpers/saving/bytes_callback.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/save_options.h"

namespace tessary::convertdib {

// Called while a file is read: `done` of `total`, and the caller's own value. Non-zero asks to
// stop. At most about a hundred calls for one file, on the calling thread; must not throw.
using ProgressCallback = int(__stdcall*)(int done, int total, LONG_PTR userData);

// Where a bitmap is read to.
struct BitmapReadRecord {
    // In: the caller's zero-filled info block, 1064 bytes. Receives the 40-byte header.
    void* info;
    // In: the colour-table area, info + 40; null means just that. Receives the colour table (all
    // entries that the depth can index, 4 bytes each), or the masks of a 16-bit bitmap or of one
    // with alpha.
    void* colorTable;
    // In: the same address again; not used.
    void* colorTableAgain;
    // Out: the pixel rows, bottom row first: the address of a movable local-memory block
    // (LocalAlloc) that is locked once. The caller gets its handle by LocalHandle, unlocks and
    // frees it. Null after a failure.
    void* bits;
};

// What reading answers on success. Files that are cut short within their pixels are read as far as
// they go.
constexpr int kBitmapWhole = 1;
constexpr int kBitmapCutShort = 2;

// Reads a bitmap file of any kind in the plain form (helpers/dib/dib_view.h). `progress` may be
// null. Returns kBitmapWhole or kBitmapCutShort on success; 0 when the file cannot be opened, is no
// bitmap or one that is not supported, lacks its pixels altogether, is too large for the process,
// or when `progress` asked to stop. A failure leaves the caller's info block as it was. The file
// name is in the system's code page.
using LoadBITMAPFileFunction = int(__stdcall*)(const char* fileName, BitmapReadRecord* record,
                                               ProgressCallback progress, LONG_PTR userData);
constexpr char kLoadBITMAPFileName[] = "LoadBITMAPFile";

// The same for a name in UTF-16, of any length.
using LoadBITMAPFileWFunction = int(__stdcall*)(const wchar_t* fileName, BitmapReadRecord* record,
                                                ProgressCallback progress, LONG_PTR userData);
constexpr char kLoadBITMAPFileWName[] = "LoadBITMAPFileW";

// Writes a picture to a bitmap file, which replaces what is there when it is complete; until then,
// and after a failure, what is there stays as it is. `info` and `bits` are the addresses of the
// locked blocks of a pair (saving/picture_at.h tells which), `options` null for the defaults.
// Returns non-zero for success and 0 for failure, of which GetLastError then tells the reason
// (ERROR_INVALID_DATA: the pair is no picture). The file name is in the system's code page.
using SaveToBITMAPFileFunction = int(__stdcall*)(const void* info, const void* bits,
                                                 const char* fileName,
                                                 const saving::BmpSaveOptions* options);
constexpr char kSaveToBITMAPFileName[] = "SaveToBITMAPFile";

// The same for a name in UTF-16, of any length. `progressCallback` is the address of a
// saving::ProgressCallback, 0 for none; it is called only while a file is waited for that others
// have open.
using SaveToBITMAPFileWFunction = int(__stdcall*)(const void* info, const void* bits,
                                                  const wchar_t* fileName,
                                                  const saving::BmpSaveOptions* options,
                                                  LONG_PTR progressCallback);
constexpr char kSaveToBITMAPFileWName[] = "SaveToBITMAPFileW";

// The same with the dates that the file gets; null: the present time.
using SaveToBITMAPFileExtrasFunction = int(__stdcall*)(const void* info, const void* bits,
                                                       const wchar_t* fileName,
                                                       const saving::BmpSaveOptions* options,
                                                       LONG_PTR progressCallback,
                                                       const saving::FileExtras* extras);
constexpr char kSaveToBITMAPFileExtrasName[] = "SaveToBITMAPFileExtras";

// Makes the bytes of the same file, which `take` gets, with `to`. Answers the system's error code,
// 0 for success. `progressCallback` is not used.
using MakeBITMAPBytesFunction = int(__stdcall*)(const void* info, const void* bits,
                                                const saving::BmpSaveOptions* options,
                                                saving::BytesCallback take, void* to,
                                                LONG_PTR progressCallback);
constexpr char kMakeBITMAPBytesName[] = "MakeBITMAPBytes";

}  // namespace tessary::convertdib
