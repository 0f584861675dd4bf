// The entries of dcpng.dll, which writes PNG files, and makes them in memory. Shared by the library
// and its callers, who load it and find the entries by name.
#pragma once

#include <windows.h>

#include "helpers/saving/bytes_callback.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/progress_callback.h"
#include "helpers/saving/save_options.h"

namespace tessary::dcpng {

// Writes a picture to a PNG file, which replaces what is there when it is complete; until then, and
// after a failure, what is there stays as it is. `info` and `bits` are the addresses of the locked
// blocks of a pair (saving/picture_at.h tells which), `options` null for the defaults.
// `progressCallback` is the address of a saving::ProgressCallback, 0 for none. Returns 0 for
// success and non-zero for failure, of which GetLastError then tells the reason
// (ERROR_INVALID_DATA: the pair is no picture; ERROR_CANCELLED: the callback asked to stop). The
// file name is in the system's code page.
using SaveToPNGFileFunction = int(__stdcall*)(const void* info, const void* bits,
                                              const char* fileName,
                                              const saving::PngSaveOptions* options,
                                              LONG_PTR progressCallback);
constexpr char kSaveToPNGFileName[] = "SaveToPNGFile";

// The same for a name in UTF-16, of any length.
using SaveToPNGFileWFunction = int(__stdcall*)(const void* info, const void* bits,
                                               const wchar_t* fileName,
                                               const saving::PngSaveOptions* options,
                                               LONG_PTR progressCallback);
constexpr char kSaveToPNGFileWName[] = "SaveToPNGFileW";

// Makes the bytes of the same file, which `take` gets, with `to`. Answers the system's error code,
// 0 for success.
using MakePNGBytesFunction = int(__stdcall*)(const void* info, const void* bits,
                                             const saving::PngSaveOptions* options,
                                             saving::BytesCallback take, void* to,
                                             LONG_PTR progressCallback);
constexpr char kMakePNGBytesName[] = "MakePNGBytes";

// The same two with what else the file gets, which may be null; in memory no dates.
using SaveToPNGFileExtrasFunction = int(__stdcall*)(const void* info, const void* bits,
                                                    const wchar_t* fileName,
                                                    const saving::PngSaveOptions* options,
                                                    LONG_PTR progressCallback,
                                                    const saving::FileExtras* extras);
constexpr char kSaveToPNGFileExtrasName[] = "SaveToPNGFileExtras";
using MakePNGBytesExtrasFunction = int(__stdcall*)(const void* info, const void* bits,
                                                   const saving::PngSaveOptions* options,
                                                   saving::BytesCallback take, void* to,
                                                   LONG_PTR progressCallback,
                                                   const saving::FileExtras* extras);
constexpr char kMakePNGBytesExtrasName[] = "MakePNGBytesExtras";

}  // namespace tessary::dcpng
