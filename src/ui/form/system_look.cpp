#include "ui/form/system_look.h"

#include <initializer_list>

#include "helpers/system/system_library.h"

namespace tessary {
namespace {

// Builds of Windows 10.
constexpr DWORD k1809 = 17763;  // the first with dark menus and scroll bars
constexpr DWORD k1903 = 18362;  // entry 135 takes a mode from there on

constexpr wchar_t kThemes[] = L"uxtheme.dll";

DWORD Build() {
    static const DWORD build = [] {
        using Call = LONG(WINAPI*)(OSVERSIONINFOW*);
        const auto getVersion = SystemFunction<Call>(L"ntdll.dll", "RtlGetVersion");
        OSVERSIONINFOW version{};
        version.dwOSVersionInfoSize = sizeof(version);
        // The system's own answer, whatever the manifest says.
        const bool isKnown = getVersion != nullptr && getVersion(&version) == 0;
        return isKnown && version.dwMajorVersion >= 10 ? version.dwBuildNumber : DWORD{0};
    }();
    return build;
}

// Entries without names. They are there in all builds from 1809 on, or in none that is no Windows:
// where one is missing all are left alone.
struct Unnamed {
    BOOL(WINAPI* allowForWindow)(HWND, BOOL) = nullptr;  // 133
    union {                                              // 135
        BOOL(WINAPI* allowForProgram)(BOOL);             // in 1809
        int(WINAPI* setMode)(int) = nullptr;
    };
    void(WINAPI* flushMenus)() = nullptr;  // 136

    bool IsThere() const {
        return allowForWindow != nullptr && setMode != nullptr && flushMenus != nullptr;
    }
};

template <typename Function>
Function Entry(WORD number) {
    return SystemFunction<Function>(kThemes,
                                    reinterpret_cast<const char*>(static_cast<ULONG_PTR>(number)));
}

const Unnamed& Themes() {
    static const Unnamed themes = [] {
        Unnamed found;
        if (Build() < k1809) return found;
        found.allowForWindow = Entry<decltype(found.allowForWindow)>(133);
        found.setMode = Entry<decltype(found.setMode)>(135);
        found.flushMenus = Entry<decltype(found.flushMenus)>(136);
        return found.IsThere() ? found : Unnamed();
    }();
    return themes;
}

void AllowForWindow(HWND window, bool isDark) {
    if (Themes().IsThere()) Themes().allowForWindow(window, isDark ? TRUE : FALSE);
}

}  // namespace

bool HasDarkLooks() {
    return Build() >= k1809;
}

bool ShowsHighContrast() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof(contrast);
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool WantsDarkPrograms() {
    if (!HasDarkLooks()) return false;
    DWORD light = 1;
    DWORD size = sizeof(light);
    const LSTATUS status = RegGetValueW(
        HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
        L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
    return status == ERROR_SUCCESS && light == 0;
}

void ShowFrameDark(HWND window, bool isDark) {
    if (!HasDarkLooks()) return;
    AllowForWindow(window, isDark);
    using Call = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);
    static const auto setAttribute = SystemFunction<Call>(L"dwmapi.dll", "DwmSetWindowAttribute");
    if (setAttribute == nullptr) return;
    // Its number before version 2004, and since.
    constexpr DWORD kFormerDarkFrame = 19;
    constexpr DWORD kDarkFrame = 20;
    const BOOL wanted = isDark ? TRUE : FALSE;
    if (FAILED(setAttribute(window, kDarkFrame, &wanted, sizeof(wanted)))) {
        setAttribute(window, kFormerDarkFrame, &wanted, sizeof(wanted));
    }
    if (!IsWindowVisible(window)) return;
    // Windows 10 draws the title anew only when the window seems to come to the front, or to go.
    const bool isActive = GetActiveWindow() == window;
    for (const bool active : {!isActive, isActive})
        DefWindowProcW(window, WM_NCACTIVATE, active ? TRUE : FALSE, 0);
}

void ShowMenusDark(bool isDark) {
    if (!Themes().IsThere()) return;
    if (Build() < k1903) {
        Themes().allowForProgram(isDark ? TRUE : FALSE);
    } else {
        constexpr int kUsual = 0;
        constexpr int kForceDark = 2;
        Themes().setMode(isDark ? kForceDark : kUsual);
    }
    Themes().flushMenus();
}

void ShowControlDark(HWND control, bool isDark) {
    if (!HasDarkLooks()) return;
    AllowForWindow(control, isDark);
    using Call = HRESULT(WINAPI*)(HWND, const wchar_t*, const wchar_t*);
    static const auto setTheme = SystemFunction<Call>(kThemes, "SetWindowTheme");
    if (setTheme != nullptr) setTheme(control, isDark ? L"DarkMode_Explorer" : nullptr, nullptr);
}

}  // namespace tessary
