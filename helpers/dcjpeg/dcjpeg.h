// The entries of dcjpeg.dll, which writes JPEG files. Shared by the library and its callers, who
// load it and find the entries by name.
#pragma once

#include "helpers/saving/bytes_callback.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/progress_callback.h"
#include "helpers/saving/save_options.h"

namespace tessary::dcjpeg {

// Writes a picture to a JPEG file, which replaces what is there when it is complete; until then,
// and after a failure, what is there stays as it is. `info` and `bits` are the addresses of the
// locked blocks of a pair (saving/picture_at.h tells which), `options` null for the defaults.
// `progressCallback` is the address of a saving::ProgressCallback, 0 for none. Returns non-zero
// for success and 0 for failure, of which GetLastError then tells the reason
// (ERROR_INVALID_DATA: the pair is no picture; ERROR_CANCELLED: the callback asked to stop). The
// file name is in the system's code page.
using SaveToJPEGFileFunction = int(__stdcall*)(const void* info, const void* bits,
                                               const char* fileName,
                                               const saving::JpegSaveOptions* options,
                                               LONG_PTR progressCallback);
constexpr char kSaveToJPEGFileName[] = "SaveToJPEGFile";

// The same for a name in UTF-16, of any length.
using SaveToJPEGFileWFunction = int(__stdcall*)(const void* info, const void* bits,
                                                const wchar_t* fileName,
                                                const saving::JpegSaveOptions* options,
                                                LONG_PTR progressCallback);
constexpr char kSaveToJPEGFileWName[] = "SaveToJPEGFileW";

// Makes the bytes of the same file, which `take` gets, with `to`. Answers the system's error code,
// 0 for success.
using MakeJPEGBytesFunction = int(__stdcall*)(const void* info, const void* bits,
                                              const saving::JpegSaveOptions* options,
                                              saving::BytesCallback take, void* to,
                                              LONG_PTR progressCallback);
constexpr char kMakeJPEGBytesName[] = "MakeJPEGBytes";

// The same two with what else the file gets, which may be null; in memory no dates.
using SaveToJPEGFileExtrasFunction = int(__stdcall*)(const void* info, const void* bits,
                                                     const wchar_t* fileName,
                                                     const saving::JpegSaveOptions* options,
                                                     LONG_PTR progressCallback,
                                                     const saving::FileExtras* extras);
constexpr char kSaveToJPEGFileExtrasName[] = "SaveToJPEGFileExtras";
using MakeJPEGBytesExtrasFunction = int(__stdcall*)(const void* info, const void* bits,
                                                    const saving::JpegSaveOptions* options,
                                                    saving::BytesCallback take, void* to,
                                                    LONG_PTR progressCallback,
                                                    const saving::FileExtras* extras);
constexpr char kMakeJPEGBytesExtrasName[] = "MakeJPEGBytesExtras";

}  // namespace tessary::dcjpeg
