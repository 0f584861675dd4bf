// What a file is.
#pragma once

namespace tessary {

// 0 and 1 are both pictures: read by the program itself, or by a plug-in.
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

}  // namespace tessary
