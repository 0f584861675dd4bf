#include "ui/options/closing_windows.h"

#include "app/base/quit.h"

namespace tessary {

LRESULT CALLBACK ClosingWindows::Heard(int code, WPARAM wParam, LPARAM lParam) {
    const auto& handled = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && handled.message == WM_NCDESTROY) DropForeignQuit();
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

}  // namespace tessary
