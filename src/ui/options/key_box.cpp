#include "ui/options/key_box.h"

// The common controls need the types of windows.h.
#include <commctrl.h>

namespace tessary {
namespace {

bool IsDown(int key) {
    return GetKeyState(key) < 0;
}

bool IsModifier(WPARAM key) {
    return key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU || key == VK_LWIN ||
           key == VK_RWIN;
}

bool IsOfDialog(WPARAM key) {
    return key == VK_TAB || key == VK_ESCAPE;
}

}  // namespace

void KeyBox::Clear() {
    stroke_ = {};
    SetText({});
}

// What an input method makes of keys is no key.
void KeyBox::OnAttached() {
    Send(EM_SETREADONLY, TRUE);
    SendMessageW(Handle(), EM_SETCUEBANNER, TRUE,
                 reinterpret_cast<LPARAM>(L"ここを選んでキーを押す"));
}

std::optional<LRESULT> KeyBox::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_GETDLGCODE: {
            const auto* const key = reinterpret_cast<const MSG*>(lParam);
            const bool isOfDialog = key != nullptr && IsOfDialog(key->wParam);
            return isOfDialog ? DLGC_WANTARROWS : DLGC_WANTALLKEYS;
        }
        case WM_KEYDOWN:
            if (IsModifier(wParam) || IsOfDialog(wParam)) return std::nullopt;
            if (IsDown(VK_MENU)) return 0;  // with Ctrl: what AltGr makes of keys
            stroke_.key = static_cast<WORD>(wParam);
            stroke_.modifiers = static_cast<BYTE>((IsDown(VK_CONTROL) ? FCONTROL : 0) |
                                                  (IsDown(VK_SHIFT) ? FSHIFT : 0));
            SetText(NameOf(stroke_));
            if (pressed_) pressed_();
            return 0;
        case WM_CHAR:
        case WM_PASTE:
        case WM_CONTEXTMENU:
            return 0;
        default:
            return Control::OnOwnMessage(message, wParam, lParam);
    }
}

}  // namespace tessary
