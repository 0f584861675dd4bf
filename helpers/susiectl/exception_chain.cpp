#include "helpers/susiectl/exception_chain.h"

namespace tessary::susiectl {
namespace {

struct Record {
    const Record* outer;
    const void* handler;
};

// As NtCurrentTeb, which the compiler takes for an access out of bounds.
const NT_TIB& ThisThreadsBlock() {
    const NT_TIB* block;
    asm volatile("movl %%fs:0x18, %0" : "=r"(block));
    return *block;
}

// True where the system runs code from any page that can be read: whether it does is the program
// file's and the user's choice. Packed plug-ins need it.
bool RunsData() {
    DWORD policy = PROCESS_DEP_ENABLE;
    BOOL isPermanent = FALSE;
    return GetProcessDEPPolicy(GetCurrentProcess(), &policy, &isPermanent) &&
           !(policy & PROCESS_DEP_ENABLE);
}

bool IsExecutable(const void* address) {
    MEMORY_BASIC_INFORMATION page{};
    constexpr DWORD kExecutable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    if (!VirtualQuery(address, &page, sizeof page) || page.State != MEM_COMMIT) return false;
    return (page.Protect & kExecutable) ||
           (!(page.Protect & (PAGE_NOACCESS | PAGE_GUARD)) && RunsData());
}

// As the system wants handlers: executable, and never on the stack, where overruns write.
bool IsHandler(const void* address, const StackLimits& stack) {
    const auto word = reinterpret_cast<ULONG_PTR>(address);
    return (word < stack.low || word >= stack.high) && IsExecutable(address);
}

}  // namespace

StackLimits ThisThreadsStackLimits() {
    const NT_TIB& block = ThisThreadsBlock();
    return {reinterpret_cast<ULONG_PTR>(block.StackLimit),
            reinterpret_cast<ULONG_PTR>(block.StackBase)};
}

bool ExceptionChainReaches(const void* target) {
    const StackLimits stack = ThisThreadsStackLimits();
    ULONG_PTR low = stack.low;
    const auto* record = reinterpret_cast<const Record*>(ThisThreadsBlock().ExceptionList);
    while (record != target) {
        const auto address = reinterpret_cast<ULONG_PTR>(record);
        if (address % alignof(Record) != 0 || address < low ||
            address > stack.high - sizeof(Record) || !IsHandler(record->handler, stack))
            return false;
        low = address + sizeof(Record);
        record = record->outer;
    }
    return true;
}

}  // namespace tessary::susiectl
