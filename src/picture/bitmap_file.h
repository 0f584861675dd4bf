// Bitmap files, which the program reads without any plug-in.
#pragma once

#include <functional>
#include <string>

#include "picture/modMemory.h"

namespace tessary {

// Told how far a read has come, `done` of `total`; false asks it to stop. Empty: nobody is told.
using ReadProgress = std::function<bool(int done, int total)>;

enum class BitmapCheck { kNo, kYes, kUnreadable };
enum class OnUnreadable { kTellUser, kStaySilent };

// Whether the file's first bytes mark it as a Windows or OS/2 bitmap. A file that cannot be opened,
// or has nothing to read, is told in a message that names it, unless that is not wanted.
BitmapCheck IsBITMAPFile(const std::wstring& path, OnUnreadable onUnreadable);

// Reads a bitmap file through convertdib.dll. On success the pair is handed out: the caller owns
// both blocks; on failure everything is freed and `picture` is untouched.
bool ReadBitmapFile(const std::wstring& path, PicturePair& picture,
                    const ReadProgress& progress = {});

}  // namespace tessary
