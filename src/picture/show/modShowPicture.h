// From a file name to the picture in the view: which kind of file it is, who decodes it, and how it
// is laid out.
#pragma once

#include <string>

#include "picture/show/picture_view.h"

namespace tessary {

// What a file turned out to be. 0 and 1 are both pictures: read by the program itself, or by a
// plug-in.
enum FileKind : int {
    kFileUnknown = -1,
    kFileBitmap = 0,
    kFilePicture = 1,
    kFileArchive = 2,
};

// Whether a kind is a picture.
constexpr bool IsPictureKind(FileKind kind) {
    return kind == kFileBitmap || kind == kFilePicture;
}

// Which kind of file this is, without showing it and without a message.
FileKind QueryFileKind(const std::wstring& path);

// What came of showing a file.
struct ShownFile {
    FileKind kind = kFileUnknown;
    std::wstring
        pluginName;  // the plug-in that decoded the picture, or that took the archive; empty: none
};

// Reads a picture file, makes it the current picture and shows it in the view. What cannot be read
// is told in a message, the shown picture then stays, and the answer is kFileUnknown; a file that
// nobody claims is unknown without a message. An archive is only recognised.
ShownFile ShowFile(const std::wstring& path, PictureView& view);

// Lays the current picture out in the view at the display size mode; with no current picture the
// view is emptied. False when the picture could not be put into the view.
bool DisplayCurrentPicture(PictureView& view);

}  // namespace tessary
