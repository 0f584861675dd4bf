#include "host32/kept_state.h"

#include <clocale>
#include <cstring>

namespace tessary {
namespace {

constexpr char kPlainLocale[] = "C";

}  // namespace

KeptState::KeptState()
    : class_(GetPriorityClass(GetCurrentProcess())),
      priority_(GetThreadPriority(GetCurrentThread())),
      locale_(GetThreadLocale()) {
    DWORD_PTR all = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &processors_, &all);
}

void KeptState::PutBack() const {
    const HANDLE process = GetCurrentProcess();
    const HANDLE thread = GetCurrentThread();
    if (GetPriorityClass(process) != class_) SetPriorityClass(process, class_);
    if (GetThreadPriority(thread) != priority_) SetThreadPriority(thread, priority_);
    DWORD_PTR now = 0;
    DWORD_PTR all = 0;
    if (processors_ != 0 && GetProcessAffinityMask(process, &now, &all) && now != processors_) {
        SetProcessAffinityMask(process, processors_);
    }
    if (processors_ != 0) SetThreadAffinityMask(thread, processors_);
    if (GetThreadLocale() != locale_) SetThreadLocale(locale_);
    // That of the C library which most plug-ins share with this program.
    const char* const c = std::setlocale(LC_ALL, nullptr);
    if (c == nullptr || std::strcmp(c, kPlainLocale) != 0) std::setlocale(LC_ALL, kPlainLocale);
}

}  // namespace tessary
