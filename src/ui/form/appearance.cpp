#include "ui/form/appearance.h"

#include <map>
#include <optional>

#include "app/base/handles.h"
#include "ui/form/system_look.h"

namespace tessary {
namespace {

struct State {
    Appearance wanted = Appearance::kLight;
    bool isDark = false;
    bool isHighContrast = false;
};

State& Current() {
    static State state;
    return state;
}

std::optional<COLORREF> DarkColorOf(int index) {
    switch (index) {
        case COLOR_APPWORKSPACE:
            return kDark.view;
        case COLOR_WINDOW:
            return kDark.field;
        case COLOR_BTNFACE:
        case COLOR_MENU:
        case COLOR_MENUBAR:
            return kDark.face;
        case COLOR_WINDOWTEXT:
        case COLOR_BTNTEXT:
        case COLOR_MENUTEXT:
        case COLOR_INFOTEXT:
            return kDark.text;
        case COLOR_GRAYTEXT:
            return kDark.disabledText;
        case COLOR_HIGHLIGHT:
            return kDark.highlight;
        case COLOR_HIGHLIGHTTEXT:
            return kDark.highlightText;
        case COLOR_INFOBK:
            return kDark.hot;
        case COLOR_BTNSHADOW:
            return kDark.edge;
        default:
            return std::nullopt;
    }
}

}  // namespace

void WantAppearance(Appearance wanted) {
    Current().wanted = wanted;
}

bool LookAtSystem() {
    State& state = Current();
    const bool was = state.isDark;
    state.isHighContrast = ShowsHighContrast();
    state.isDark = state.wanted != Appearance::kLight && !state.isHighContrast &&
                   (state.wanted == Appearance::kDark || WantsDarkPrograms());
    return state.isDark != was;
}

bool IsDark() {
    return Current().isDark;
}

bool IsHighContrast() {
    return Current().isHighContrast;
}

COLORREF ColorOf(int index) {
    const std::optional<COLORREF> own = IsDark() ? DarkColorOf(index) : std::nullopt;
    return own ? *own : GetSysColor(index);
}

HBRUSH BrushOf(int index) {
    const std::optional<COLORREF> own = IsDark() ? DarkColorOf(index) : std::nullopt;
    return own ? BrushIn(*own) : GetSysColorBrush(index);
}

HBRUSH BrushIn(COLORREF color) {
    static std::map<COLORREF, UniqueBrush> brushes;
    UniqueBrush& brush = brushes[color];
    if (!brush) brush.Reset(CreateSolidBrush(color));
    return brush.Get();
}

}  // namespace tessary
