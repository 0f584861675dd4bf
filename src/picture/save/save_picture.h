// Writing pictures to files: which library writes, with which options.
#pragma once

#include <windows.h>

#include <string>

#include "app/settings/saver_format.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/save_options.h"
#include "picture/picture.h"

namespace tessary {

// Saves a picture under a name whose extension, in any case, chooses the format: its usual one
// (BMP, PNG, JPG); every other name is refused. The file replaces what is there when it is
// complete. `passThrough` goes to the writers unchanged: the address of a saving::ProgressCallback,
// 0 for none. False, without a message, when nothing was saved; GetLastError tells why
// (app/base/write_error.h).
bool SavePictureFile(const Picture& picture, const std::wstring& fileName,
                     const saving::SaveOptions& options, LONG_PTR passThrough);

// The same for a pair, which stays the caller's and must be plain (helpers/dib/dib_view.h). One
// without a bits block is taken to hold the image of a whole bitmap file in its info block.
bool SavePictureFile(const PicturePair& picture, const std::wstring& fileName,
                     const saving::SaveOptions& options, LONG_PTR passThrough);

// Saves a picture in a format that the caller has chosen, whatever the name.
bool SavePictureAs(const SaverFormat& format, const Picture& picture, const std::wstring& fileName,
                   const saving::SaveOptions& options, LONG_PTR passThrough);

// What a picture that AsItIsSaved has answered takes along into its file, where it lies in the
// picture.
saving::FileExtras ExtrasOf(const Picture& picture);

// The picture for a format: in sRGB, unless the options want it to keep colours of its own and the
// format holds their profile, and in one without transparency laid over the options' backdrop; with
// what it takes along.
Picture AsItIsSaved(const Picture& picture, const SaverFormat& format,
                    const saving::SaveOptions& options);

// One format each, for the addresses of the locked blocks of a plain pair.
bool SaveBitmap(const void* info, const void* bits, const std::wstring& fileName,
                const saving::BmpSaveOptions& options, LONG_PTR passThrough = 0);
bool SavePNG(const void* info, const void* bits, const std::wstring& fileName,
             const saving::PngSaveOptions& options, LONG_PTR passThrough);
bool SaveJPEG(const void* info, const void* bits, const std::wstring& fileName,
              const saving::JpegSaveOptions& options, LONG_PTR passThrough);

}  // namespace tessary
