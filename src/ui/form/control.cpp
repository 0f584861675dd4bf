#include "ui/form/control.h"

#include "app/base/error.h"
#include "ui/form/picture_box.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

constexpr wchar_t kObjectProperty[] = L"TessaryControl";

}  // namespace
Control::~Control() {
    if (handle_ != nullptr) LetGo();
}

bool Control::CreateChild(HWND parent, const wchar_t* className, DWORD style, DWORD extendedStyle,
                          int id, const wchar_t* text) {
    const HWND window = CreateWindowExW(
        extendedStyle, className, text, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, parent,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ProgramInstance(), nullptr);
    return Adopt(window);
}

bool Control::Attach(HWND dialog, int id) {
    return Adopt(GetDlgItem(dialog, id));
}

bool Control::Adopt(HWND window) {
    if (window == nullptr) return false;
    handle_ = window;
    SetPropW(window, kObjectProperty, this);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    // By hand: the common controls' subclassing looks a property up at every message, which some
    // systems make slow enough to be felt in a long list.
    former_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)));
    OnAttached();
    return true;
}

void Control::LetGo() {
    RemovePropW(handle_, kObjectProperty);
    SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
    SetWindowLongPtrW(handle_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former_));
    handle_ = nullptr;
}

Control* Control::Of(HWND window) {
    return window == nullptr ? nullptr : static_cast<Control*>(GetPropW(window, kObjectProperty));
}

void Control::SetText(const std::wstring& text) {
    SetWindowTextW(handle_, text.c_str());
}

std::wstring Control::Text() const {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(handle_)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(handle_, text.data(), static_cast<int>(text.size()))));
    return text;
}

void Control::SetEnabled(bool enabled) {
    if (handle_ == nullptr || enabled == IsEnabled()) return;
    if (!enabled && HasFocus()) ::SetFocus(GetParent(handle_));
    EnableWindow(handle_, enabled);
    // A scroll bar that was painted meanwhile looks disabled until somebody paints it again.
    if (enabled && (GetWindowLongW(handle_, GWL_STYLE) & WS_VSCROLL) != 0) Send(WM_NCPAINT, 1);
}

void Control::SetVisible(bool visible) {
    ShowWindow(handle_, visible ? SW_SHOWNA : SW_HIDE);
}

void Control::SetFocus() const {
    ::SetFocus(handle_);
}

void Control::SetBounds(int left, int top, int width, int height) {
    // Of neighbours that move one after the other, one would take pixels of the next along.
    SetWindowPos(handle_, nullptr, left, top, width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

void Control::SetFont(HFONT font) {
    Send(WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

std::optional<LRESULT> Control::Reflect(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            if (Control* const control = Of(reinterpret_cast<HWND>(lParam))) {
                control->OnCommand(HIWORD(wParam), LOWORD(wParam));
                return 0;
            }
            return std::nullopt;
        case WM_NOTIFY: {
            NMHDR& header = *reinterpret_cast<NMHDR*>(lParam);
            Control* const control = Of(header.hwndFrom);
            return control == nullptr ? std::nullopt : control->OnNotify(header);
        }
        case WM_DRAWITEM: {
            const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            if (item.CtlType == ODT_MENU) return std::nullopt;
            if (Control* const control = Of(item.hwndItem)) {
                control->OnDrawItem(item);
                return TRUE;
            }
            return std::nullopt;
        }
        case WM_HSCROLL:
        case WM_VSCROLL:
            if (Control* const control = Of(reinterpret_cast<HWND>(lParam))) {
                control->OnScroll(LOWORD(wParam));
                return 0;
            }
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

std::optional<LRESULT> Control::OnOwnMessage(UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message != WM_KEYDOWN || !keyDown_) return std::nullopt;
    if (!keyDown_(static_cast<int>(wParam), CurrentShiftState())) return std::nullopt;
    // The character that belongs to the key would otherwise still reach the control.
    MSG character{};
    if (PeekMessageW(&character, handle_, WM_CHAR, WM_CHAR, PM_REMOVE) &&
        character.message == WM_QUIT) {  // is handed out whatever was asked for
        PostQuitMessage(static_cast<int>(character.wParam));
    }
    return 0;
}

LRESULT CALLBACK Control::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const control = reinterpret_cast<Control*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (control == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    const WNDPROC former = control->former_;
    if (message == WM_NCDESTROY) {
        control->LetGo();
        return CallWindowProcW(former, window, message, wParam, lParam);
    }
    const std::optional<LRESULT> answer = Trapped(
        std::optional<LRESULT>(), [&] { return control->OnOwnMessage(message, wParam, lParam); });
    return answer ? *answer : CallWindowProcW(former, window, message, wParam, lParam);
}

}  // namespace tessary
