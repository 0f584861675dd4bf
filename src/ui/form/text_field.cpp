#include "ui/form/text_field.h"

#include "app/base/text.h"

namespace tessary {

bool IsTextField(HWND window) {
    wchar_t name[16]{};
    GetClassNameW(window, name, 16);
    return EqualsIgnoreCase(name, L"Edit");
}

bool TakesText(HWND window) {
    return IsTextField(window) && (GetWindowLongW(window, GWL_STYLE) & ES_READONLY) == 0;
}

}  // namespace tessary
