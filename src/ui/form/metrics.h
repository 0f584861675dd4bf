// Sizes and fonts at the resolution of the screen that a window is on.
#pragma once

#include <windows.h>

#include <string>

#include "app/base/handles.h"

namespace tessary {

namespace handle_traits {
struct Icon : NullIsNone<HICON> {
    static void Close(HICON icon) { DestroyIcon(icon); }
};
}  // namespace handle_traits
using UniqueIcon = UniqueHandle<handle_traits::Icon>;

// The resolution (dpi) that the desktop as a whole counts in, the same for all its screens.
int DesktopDpi();

// A value: make a new one when the window has moved to a screen of another resolution.
class Metrics {
  public:
    // Asks newer systems for the window's own resolution, older ones for that of the whole desktop.
    explicit Metrics(HWND window);

    int Dpi() const { return dpi_; }

    // Pixels at 96 dpi as pixels of this screen.
    int Scale(int pixelsAt96Dpi) const { return MulDiv(pixelsAt96Dpi, dpi_, 96); }

    // The fonts that the system uses in message boxes and in status bars. Null when it tells none.
    UniqueFont MessageFont() const;
    UniqueFont StatusFont() const;

    // An icon of the program in this size (at 96 dpi); null when there is none of that number.
    UniqueIcon Icon(int resource, int pixelsAt96Dpi) const;

    // The system's fonts, and the sizes of frames and bars.
    NONCLIENTMETRICSW NonClientMetrics() const;

  private:
    int dpi_;
};

// Measures texts in a font as a window shows them. For the moment of measuring.
class TextMeter {
  public:
    // Window and font must outlive this.
    TextMeter(HWND window, HFONT font);
    TextMeter(const TextMeter&) = delete;
    TextMeter& operator=(const TextMeter&) = delete;
    ~TextMeter();

    int WidthOf(const std::wstring& text) const;
    int LineHeight() const;

  private:
    HWND window_;
    HDC context_;
    HGDIOBJ former_;  // font
};

}  // namespace tessary
