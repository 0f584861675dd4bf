// The pop-up menu of the picture: what is known of the shown picture.
#pragma once

#include <string>

#include "picture/picture.h"

namespace tessary {

// Where the shown picture comes from.
struct PictureSource {
    std::wstring fileName;    // file or archive member; empty: unknown
    std::wstring pluginName;  // the plug-in that decoded it; empty: none did
    std::wstring path = {};   // full path of the file, or of the archive around it; empty: none
    uint32_t page = 0;        // from 1
    uint32_t pages = 0;       // that the file or member has; 0: none
    bool isSpread = false;    // it is one of two that are shown as one picture
};

// The text of a pop-up item (menuPopup… of resource.h) filled with what it tells of a picture
// (null: there is none), as the menu shows it. Empty for a number that is none of the pop-up
// menu's.
std::wstring PicturePopupText(int id, const PictureSource& source, const Picture* picture);

// The text that choosing the item copies: its own, or for menuPopupGraphicInfo all of them, a line
// each.
std::wstring PicturePopupCopyText(int id, const PictureSource& source, const Picture& picture);

}  // namespace tessary
