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

bool IsExecutable(const void* address) {
    MEMORY_BASIC_INFORMATION page{};
    constexpr DWORD kExecutable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    return VirtualQuery(address, &page, sizeof page) && page.State == MEM_COMMIT &&
           (page.Protect & kExecutable);
}

}  // namespace

StackLimits ThisThreadsStackLimits() {
    const NT_TIB& block = ThisThreadsBlock();
    return {reinterpret_cast<ULONG_PTR>(block.StackLimit),
            reinterpret_cast<ULONG_PTR>(block.StackBase)};
}

bool ExceptionChainReaches(const void* target) {
    StackLimits limits = ThisThreadsStackLimits();
    const auto* record = reinterpret_cast<const Record*>(ThisThreadsBlock().ExceptionList);
    while (record != target) {
        const auto address = reinterpret_cast<ULONG_PTR>(record);
        if (address % alignof(Record) != 0 || address < limits.low ||
            address > limits.high - sizeof(Record) || !IsExecutable(record->handler))
            return false;
        limits.low = address + sizeof(Record);
        record = record->outer;
    }
    return true;
}

}  // namespace tessary::susiectl
