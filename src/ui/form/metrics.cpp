#include "ui/form/metrics.h"

#include "ui/form/window.h"

namespace tessary {
namespace {

// Calls that came after Windows 7 are looked up at run time; null where the system lacks one.
template <typename Function>
Function UserFunction(const char* name) {
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(user, name)));
}

int DpiOf(HWND window) {
    static const auto getDpiForWindow = UserFunction<UINT(WINAPI*)(HWND)>("GetDpiForWindow");
    const UINT dpi = getDpiForWindow != nullptr ? getDpiForWindow(window) : 0;
    return dpi != 0 ? static_cast<int>(dpi) : DesktopDpi();
}

}  // namespace

int DesktopDpi() {
    const UniqueScreenDc screen(GetDC(nullptr));
    return screen ? GetDeviceCaps(screen.Get(), LOGPIXELSY) : USER_DEFAULT_SCREEN_DPI;
}

Metrics::Metrics(HWND window) : dpi_(DpiOf(window)) {}

NONCLIENTMETRICSW Metrics::NonClientMetrics() const {
    static const auto forDpi =
        UserFunction<BOOL(WINAPI*)(UINT, UINT, void*, UINT, UINT)>("SystemParametersInfoForDpi");
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    if (forDpi == nullptr || !forDpi(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0, dpi_)) {
        SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    }
    return metrics;
}

UniqueFont Metrics::MessageFont() const {
    const NONCLIENTMETRICSW metrics = NonClientMetrics();
    return UniqueFont(CreateFontIndirectW(&metrics.lfMessageFont));
}

UniqueFont Metrics::StatusFont() const {
    const NONCLIENTMETRICSW metrics = NonClientMetrics();
    return UniqueFont(CreateFontIndirectW(&metrics.lfStatusFont));
}

UniqueIcon Metrics::Icon(int resource, int pixelsAt96Dpi) const {
    const int size = Scale(pixelsAt96Dpi);
    return UniqueIcon(static_cast<HICON>(LoadImageW(ProgramInstance(), MAKEINTRESOURCEW(resource),
                                                    IMAGE_ICON, size, size, LR_DEFAULTCOLOR)));
}

TextMeter::TextMeter(HWND window, HFONT font)
    : window_(window), context_(GetDC(window)), former_(SelectObject(context_, font)) {}

TextMeter::~TextMeter() {
    SelectObject(context_, former_);
    ReleaseDC(window_, context_);
}

int TextMeter::WidthOf(const std::wstring& text) const {
    SIZE size{};
    GetTextExtentPoint32W(context_, text.c_str(), static_cast<int>(text.size()), &size);
    return size.cx;
}

int TextMeter::LineHeight() const {
    TEXTMETRICW text{};
    GetTextMetricsW(context_, &text);
    return text.tmHeight;
}

}  // namespace tessary
