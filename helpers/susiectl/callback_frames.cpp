#include "helpers/susiectl/callback_frames.h"

#include <atomic>
#include <mutex>

#include "helpers/susiectl/exception_chain.h"
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/module_at.h"

namespace tessary::susiectl {
namespace {

using NtCallbackReturn = LONG(WINAPI*)(void* answer, ULONG length, LONG status);
constexpr LONG kUnsuccessful = static_cast<LONG>(0xC0000001);

// What the dispatcher leaves on the stack is the same each time: its record, and some words below
// it the address to which what it has called returns.
struct Shape {
    const void* handler = nullptr;
    ULONG_PTR returnAddress = 0;
    size_t distance = 0;  // in words, from the record down to where the address lies
    NtCallbackReturn end = nullptr;
};

Shape shape;

const ULONG_PTR* WordsBelow(const ExceptionRegistration* record, size_t count) {
    return reinterpret_cast<const ULONG_PTR*>(record) - count;
}

// Run by the system: between the caller's frame and ours is the dispatcher's.
BOOL CALLBACK LookAround(HMONITOR, HDC, RECT*, LPARAM caller) {
    constexpr size_t kFarthest = 64;        // words
    constexpr ULONG_PTR kLongest = 0x1000;  // bytes of the dispatcher's code
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    const auto dispatcher =
        reinterpret_cast<ULONG_PTR>(GetProcAddress(ntdll, "KiUserCallbackDispatcher"));
    const ExceptionRegistration* found = nullptr;
    for (const auto* each = InnermostRegistration(); reinterpret_cast<LPARAM>(each) < caller;
         each = each->outer)
        if (ModuleAt(each->handler) == ntdll) found = each;
    if (!found || !dispatcher) return FALSE;
    for (size_t distance = 1; distance <= kFarthest; ++distance) {
        const ULONG_PTR word = *WordsBelow(found, distance);
        if (word <= dispatcher || word - dispatcher > kLongest) continue;
        shape.returnAddress = word;
        shape.distance = distance;
        shape.handler = found->handler;
        break;
    }
    return FALSE;
}

bool Learn() {
    shape.end = reinterpret_cast<NtCallbackReturn>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtCallbackReturn")));
    int here = 0;  // only its address counts
    if (shape.end)
        EnumDisplayMonitors(nullptr, nullptr, LookAround, reinterpret_cast<LPARAM>(&here));
    return shape.handler != nullptr;
}

bool IsOnStack(const ExceptionRegistration* record, const StackLimits& stack) {
    const auto address = reinterpret_cast<ULONG_PTR>(record);
    return address % sizeof(ULONG_PTR) == 0 && address >= stack.low &&
           address <= stack.high - sizeof *record;
}

bool LeadsTo(const ExceptionRegistration* record, const void* end) {
    const StackLimits stack = ThisThreadsStackLimits();
    while (record != end) {
        if (!IsOnStack(record, stack) || record->outer <= record) return false;
        record = record->outer;
    }
    return true;
}

}  // namespace

void LearnCallbackFrames() {
    static std::atomic<bool> isKnown = false;
    static std::mutex learning;
    if (isKnown) return;
    const std::lock_guard lock(learning);
    if (!isKnown) isKnown = Learn();
}

bool IsCallbackFrame(const ExceptionRegistration* record) {
    if (!shape.handler) return false;
    const bool isHandler = record->handler == shape.handler ||
                           record->handler == reinterpret_cast<void*>(&TessaryCallbackHandler);
    return isHandler && *WordsBelow(record, shape.distance) == shape.returnAddress;
}

bool IsIntoDispatcher(ULONG_PTR returnAddress) {
    return returnAddress == shape.returnAddress;
}

ExceptionRegistration* FirstCallbackFrame(ExceptionRegistration* record, const void* end) {
    const StackLimits stack = ThisThreadsStackLimits();
    for (; record != end && IsOnStack(record, stack); record = record->outer)
        if (IsCallbackFrame(record)) return record;
    return nullptr;
}

ExceptionRegistration* SearchCallbackFrame(ULONG_PTR from, ULONG_PTR to, const void* end) {
    if (!shape.handler) return nullptr;
    from += shape.distance * sizeof(ULONG_PTR);
    for (ULONG_PTR at = from & ~3UL; at + sizeof(ExceptionRegistration) <= to; at += 4) {
        auto* const record = reinterpret_cast<ExceptionRegistration*>(at);
        if (IsCallbackFrame(record) && LeadsTo(record, end)) return record;
    }
    return nullptr;
}

ExceptionRegistration* InnermostRegistration() {
    ExceptionRegistration* record;
    asm volatile("movl %%fs:0, %0" : "=r"(record));
    return record;
}

const void* SystemsCallbackHandler() {
    return shape.handler;
}

void EndCallback() {
    if (shape.end) shape.end(nullptr, 0, kUnsuccessful);
}

}  // namespace tessary::susiectl
