// Crashes inside windows of the plug-in's own, whose procedures the system calls.
#include "tests/plugins/function.h"
#include "tests/plugins/misdeeds.h"

namespace tessary::test {
namespace {

constexpr UINT kPosted = WM_APP + 1;
constexpr UINT kEndOfLoop = WM_APP + 2;
constexpr UINT_PTR kTimer = 7;
constexpr UINT kSoon = 10;      // milliseconds
constexpr UINT kEnough = 2000;  // the same: nothing keeps a test waiting for longer

std::string place;
std::string kind;
int depth = 0;

HWND MakeWindow();

void CrashAt(const char* here) {
    if (place != here) return;
    ++CallCount("window");
    Crash(kind);
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        CrashAt("create");
        if (place == "create-in-create") {
            if (++depth == 3) CrashAt("create-in-create");
            MakeWindow();
        }
    }
    if (message == WM_DESTROY) CrashAt("destroy");
    if (message == WM_DESTROY || message == WM_NCDESTROY) CrashAt("destroy-twice");
    if (message == kPosted) CrashAt("posted");
    if (message == WM_TIMER) CrashAt("timer");
    return DefWindowProcW(window, message, wParam, lParam);
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_INITDIALOG) {
        const HWND button = CreateWindowW(L"BUTTON", L"", WS_CHILD | WS_VISIBLE, 0, 0, 9, 9, dialog,
                                          reinterpret_cast<HMENU>(IDOK), nullptr, nullptr);
        CrashAt("init");
        PostMessageW(button, BM_CLICK, 0, 0);
        SetTimer(dialog, kTimer, kEnough, nullptr);
        return TRUE;
    }
    if (message == WM_COMMAND && wParam == IDOK) CrashAt("command");
    if (message == WM_COMMAND || message == WM_TIMER) EndDialog(dialog, 0);
    return FALSE;
}

void CALLBACK TimerProcedure(HWND window, UINT, UINT_PTR timer, DWORD) {
    KillTimer(window, timer);
    PostMessageW(window, kEndOfLoop, 0, 0);
    CrashAt("timer-procedure");
}

HWND MakeWindow() {
    const HWND window = OpenWindowOfOurs(L"Test plug-in crashing window", Procedure, 0);
    if (place.starts_with("create")) ++CallCount("window-came-back");
    return window;
}

void RunMessages() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0 && message.message != kEndOfLoop)
        DispatchMessageW(&message);
}

void RunDialog() {
    struct alignas(4) {
        DLGTEMPLATE head{WS_POPUP | WS_VISIBLE, 0, 0, 0, 0, 50, 50};
        WORD menuClassTitle[3]{};
    } dialog;
    DialogBoxIndirectParamW(ThisModule(), &dialog.head, nullptr, DialogProcedure, 0);
}

void RunWindow() {
    const HWND window = MakeWindow();
    if (!window) return;
    PostMessageW(window, kPosted, 0, 0);
    if (place.starts_with("destroy")) DestroyWindow(window);
    SetTimer(window, kTimer, kSoon, place == "timer-procedure" ? TimerProcedure : nullptr);
    if (place == "posted") PostMessageW(window, kEndOfLoop, 0, 0);
    if (!place.starts_with("destroy")) RunMessages();
}

}  // namespace

void CrashInWindow(const std::string& placeAndKind) {
    const size_t slash = placeAndKind.find('/');
    if (slash == std::string::npos) return;
    place = placeAndKind.substr(0, slash);
    kind = placeAndKind.substr(slash + 1);
    depth = 0;
    if (place.starts_with("create")) MakeWindow();
    if (place == "init" || place == "command") RunDialog();
    if (place == "posted" || place.starts_with("timer") || place.starts_with("destroy"))
        RunWindow();
    ++CallCount("window-came-back");
}

}  // namespace tessary::test
