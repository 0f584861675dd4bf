// Bitmaps, which the program reads without any plug-in: files, and blocks with a file's content.
// Those with an embedded profile are converted to sRGB.
#pragma once

#include <functional>
#include <string>

#include "picture/picture.h"

namespace tessary {

// Told how far a read has come, `done` of `total`; false asks it to stop. Empty: nobody is told.
using ReadProgress = std::function<bool(int done, int total)>;

enum class BitmapCheck { kNo, kYes, kUnreadable };

// Whether the file's first bytes mark it as a Windows or OS/2 bitmap. For a file that cannot be
// opened or read `failure` receives the message that names it.
BitmapCheck IsBITMAPFile(const std::wstring& path, std::wstring& failure);

// Reads a bitmap file through convertdib.dll. On failure everything is freed and `picture` is
// untouched. Of a file that is cut short what is there is read, and `damage` receives the text that
// says so; else an empty one.
bool ReadBitmapFile(const std::wstring& path, Picture& picture, const ReadProgress& progress = {},
                    std::wstring* damage = nullptr);

// The same two for the content of a bitmap file in a block, which stays the caller's. Empty
// when the block cannot be read as a bitmap.
bool IsBitmapBlock(HLOCAL block);
Picture ReadBitmapBlock(HLOCAL block, const ReadProgress& progress, std::wstring& damage);

}  // namespace tessary
