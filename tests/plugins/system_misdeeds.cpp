// What a plug-in does to its whole process or thread, beyond its own call.
#include <clocale>
#include <cstring>

#include "tests/plugins/misdeeds.h"

namespace tessary::test {
namespace {

// Whoever's they are.
void CloseAllHandles() {
    for (ULONG_PTR number = 4; number < 4 * 4096; number += 4)
        CloseHandle(reinterpret_cast<HANDLE>(number));
}

// Behind this the plug-in's thread gets hardly a turn, and others' programs none.
void ChangePriorities() {
    SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS);
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_IDLE);
    SetProcessAffinityMask(GetCurrentProcess(), 1);
    SetThreadAffinityMask(GetCurrentThread(), 1);
}

void ChangeLocale() {
    SetThreadLocale(MAKELCID(MAKELANGID(LANG_TURKISH, SUBLANG_DEFAULT), SORT_DEFAULT));
    std::setlocale(LC_ALL, "Turkish");
}

LRESULT CALLBACK CrashOnMessage(int, WPARAM, LPARAM) {
    Crash("av");
    return 0;
}

LRESULT CALLBACK PassOn(int code, WPARAM wParam, LPARAM lParam) {
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LONG CALLBACK GoOnAtOnce(EXCEPTION_POINTERS*) {
    return EXCEPTION_CONTINUE_EXECUTION;
}

LONG CALLBACK EndTheThread(EXCEPTION_POINTERS*) {
    ExitThread(0);
}

// What was handed out, which is the host's.
void FreeAgain() {
    for (const HLOCAL block : HandedOut()) {
        LocalFree(block);
        LocalFree(block);
    }
    HandedOut().clear();
}

}  // namespace

std::vector<HLOCAL>& HandedOut() {
    static std::vector<HLOCAL> blocks;
    return blocks;
}

bool IsPlainProcess() {
    DWORD_PTR processors = 0;
    DWORD_PTR all = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &processors, &all);
    return processors == all && GetPriorityClass(GetCurrentProcess()) != HIGH_PRIORITY_CLASS &&
           GetThreadPriority(GetCurrentThread()) == THREAD_PRIORITY_NORMAL &&
           GetThreadLocale() == GetUserDefaultLCID() &&
           std::strcmp(std::setlocale(LC_ALL, nullptr), "C") == 0;
}

void ChangeSystem(const std::string& state) {
    if (state == "close-handles") CloseAllHandles();
    if (state == "priorities") ChangePriorities();
    if (state == "locale") ChangeLocale();
    if (state == "thread-hook")
        SetWindowsHookExW(WH_GETMESSAGE, CrashOnMessage, nullptr, GetCurrentThreadId());
    if (state == "thread-hook") SetTimer(nullptr, 0, 10, nullptr);
    if (state == "free-again") FreeAgain();
    if (state == "global-hook") SetWindowsHookExW(WH_GETMESSAGE, PassOn, ThisModule(), 0);
    if (state == "go-on-at-once") AddVectoredExceptionHandler(1, GoOnAtOnce);
    if (state == "end-the-thread") AddVectoredExceptionHandler(1, EndTheThread);
}

}  // namespace tessary::test
