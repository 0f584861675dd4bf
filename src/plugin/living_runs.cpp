#include "plugin/living_runs.h"

#include <windows.h>

#include <cstdio>
#include <string>

#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/shared_mutex.h"
#include "app/settings/settings_store.h"

namespace tessary {
namespace {

// Key: a number; value: the name of the mutex of the copy that took it last.
constexpr wchar_t kRuns[] = L"SPI_RUNS";

constexpr DWORD kLongestWait = 2000;  // milliseconds; a copy that hangs must not hold up this one

// The name of the mutex that this process holds for its whole life, so that others can tell it from
// one that has ended. The start time tells processes of the same number apart.
const wchar_t* OwnName() {
    // No object that ends: plug-ins are still freed, and logged, while static objects are
    // destroyed.
    static wchar_t name[64];
    static const UniqueMutex held = [] {
        FILETIME start{}, other;
        GetProcessTimes(GetCurrentProcess(), &start, &other, &other, &other);
        std::swprintf(name, std::size(name), LR"(Global\Tessary_Viewer_run_%lu_%08lx%08lx)",
                      GetCurrentProcessId(), start.dwHighDateTime, start.dwLowDateTime);
        return SharedMutex(name);
    }();
    return name;
}

int TakeNumber() {
    const RunsHeld runs;
    int run = 1;
    while (run < kMostRuns && runs.IsAnothers(run))
        ++run;
    SaveSetting(kRuns, std::to_wstring(run), OwnName());
    return run;
}

}  // namespace

RunsHeld::RunsHeld() : mutex_(SharedMutex(LR"(Global\Tessary_Viewer_runs)").Release()) {
    if (mutex_ != nullptr) WaitForSingleObject(mutex_, kLongestWait);
}

RunsHeld::~RunsHeld() {
    if (mutex_ == nullptr) return;
    ReleaseMutex(mutex_);
    CloseHandle(mutex_);
}

bool RunsHeld::IsAnothers(int run) const {
    // What is no text names nobody.
    const auto name =
        Trapped(std::wstring(), [&] { return GetSetting(kRuns, std::to_wstring(run)); });
    if (name.empty() || name == OwnName()) return false;
    return UniqueMutex(OpenMutexW(SYNCHRONIZE, FALSE, name.c_str())) ||
           GetLastError() == ERROR_ACCESS_DENIED;
}

int OwnRun() {
    static const int run = TakeNumber();
    return run;
}

}  // namespace tessary
