#include "ui/form/tab_stops.h"

namespace tessary {

std::vector<HWND> TabStops(HWND parent) {
    constexpr LONG kWanted = WS_TABSTOP | WS_VISIBLE;
    std::vector<HWND> stops;
    for (HWND control = GetWindow(parent, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        const LONG style = GetWindowLongW(control, GWL_STYLE);
        if ((style & (kWanted | WS_DISABLED)) == kWanted) stops.push_back(control);
    }
    return stops;
}

}  // namespace tessary
