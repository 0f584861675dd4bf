#include "ui/form/window.h"

#include "app/base/error.h"

namespace tessary {
namespace {

constexpr UINT kNoMessage = 0xBFFF;  // the last number of WM_APP; nobody posts it

BOOL CALLBACK TellOne(HWND child, LPARAM /*unused*/) {
    SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
    return TRUE;
}

}  // namespace

Window::~Window() {
    if (handle_ == nullptr) return;
    SetWindowLongPtrW(handle_, GWLP_USERDATA, 0);
    DestroyWindow(handle_);
}

bool Window::Create(const Creation& creation) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = creation.classStyle;
    windowClass.lpfnWndProc = Procedure;
    windowClass.hInstance = ProgramInstance();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = creation.className;
    RegisterClassExW(&windowClass);  // fails harmlessly from the second window on

    CreateWindowExW(creation.extendedStyle, creation.className, creation.text, creation.style,
                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, creation.parent,
                    creation.menu, ProgramInstance(), this);
    return handle_ != nullptr;
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Default(message, wParam, lParam);
}

LRESULT CALLBACK Window::Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* const created =
            static_cast<Window*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        created->handle_ = handle;
        SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const window = reinterpret_cast<Window*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
    if (window == nullptr) return DefWindowProcW(handle, message, wParam, lParam);

    LRESULT result = 0;
    try {
        result = window->OnMessage(message, wParam, lParam);
    } catch (...) {
        // An area left invalid would ask to be painted for ever.
        if (message == WM_PAINT) ValidateRect(handle, nullptr);
    }
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
        window->handle_ = nullptr;
        Trapped([&] { window->OnDestroyed(); });
    }
    return result;
}

void TellColorChange(HWND window) {
    EnumChildWindows(window, TellOne, 0);
}

void PaintNow(HWND window) {
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    GdiFlush();
    // Some systems show what was painted when the thread looks for a message; there is none here.
    MSG none{};
    PeekMessageW(&none, window, kNoMessage, kNoMessage, PM_NOREMOVE);
}

}  // namespace tessary
