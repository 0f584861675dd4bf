#include "plugin/living_runs.h"

#include <windows.h>

#include <cstdio>
#include <string>

#include "app/base/error.h"
#include "app/base/shared_mutex.h"
#include "app/settings/settings_store.h"

namespace tessary {
namespace {

// Key: a number; value: the name of the mutex of the copy that took it last.
constexpr wchar_t kRuns[] = L"SPI_RUNS";

constexpr DWORD kLongestWait = 2000;  // milliseconds; a copy that hangs must not hold up this one

// The start time tells processes of the same number apart.
std::wstring NameOfThisProcess() {
    FILETIME start{}, other;
    GetProcessTimes(GetCurrentProcess(), &start, &other, &other, &other);
    wchar_t name[64];
    std::swprintf(name, std::size(name), LR"(Global\Tessary_Viewer_run_%lu_%08lx%08lx)",
                  GetCurrentProcessId(), start.dwHighDateTime, start.dwLowDateTime);
    return name;
}

// Whether the copy of that name has not ended.
bool IsLiving(const std::wstring& name) {
    return UniqueMutex(OpenMutexW(SYNCHRONIZE, FALSE, name.c_str())) ||
           GetLastError() == ERROR_ACCESS_DENIED;
}

}  // namespace

OwnRun::OwnRun() : name_(NameOfThisProcess()), held_(SharedMutex(name_.c_str())) {}

int OwnRun::Number() {
    const std::lock_guard lock(mutex_);
    if (number_ != 0) return number_;
    const RunsHeld runs;
    int number = 1;
    while (number < kMostRuns && runs.IsAnothers(number, name_))
        ++number;
    SaveSetting(kRuns, std::to_wstring(number), name_);
    return number_ = number;
}

RunsHeld::RunsHeld() : mutex_(SharedMutex(LR"(Global\Tessary_Viewer_runs)")) {
    if (mutex_) WaitForSingleObject(mutex_.Get(), kLongestWait);
}

RunsHeld::~RunsHeld() {
    if (mutex_) ReleaseMutex(mutex_.Get());
}

bool RunsHeld::IsAnothers(int number, const std::wstring& ownName) const {
    // What is no text names nobody.
    const auto name =
        Trapped(std::wstring(), [&] { return GetSetting(kRuns, std::to_wstring(number)); });
    return !name.empty() && name != ownName && IsLiving(name);
}

}  // namespace tessary
