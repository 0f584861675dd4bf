// How an entry of a list looks.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

namespace tessary {

// A small picture: what there is of it, and its block and rows as GDI takes them.
struct EntryPicture {
    enum class State { kNone, kComing, kThere, kFailed };
    State state = State::kNone;
    const BITMAPINFO* info = nullptr;
    const void* rows = nullptr;
    std::shared_ptr<const void> owner{};  // of both
};

struct EntryLook {
    int dpi = USER_DEFAULT_SCREEN_DPI;
    HFONT font = nullptr;  // the caller's
    std::wstring text{};
    bool isDimmed = false;  // there is nothing to choose
    bool isInView = false;
    bool isChosen = false;
    bool isFocused = false;
};

// How a list of small pictures lays its entries out, in pixels.
struct PictureLayout {
    int side = 0;    // of the square that each picture is in
    int margin = 0;  // around it
    int label = 0;   // the height of the text below; 0: there is none
};

// Paints all of that area, with the square in the middle of its upper edge. A name that is too wide
// lacks its middle. Without labels the name stands where no picture is.
void PaintPictureEntry(HDC context, const RECT& area, const PictureLayout& layout,
                       const EntryLook& look, const EntryPicture& picture);

// Paints all of that area. A text that is too wide is shortened: a path in its middle, so that the
// file name stays.
void PaintEntry(HDC context, const RECT& area, const EntryLook& look);

}  // namespace tessary
