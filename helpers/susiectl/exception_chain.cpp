#include "helpers/susiectl/exception_chain.h"

#include "helpers/susiectl/exception_handlers.h"

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

const Record* Innermost() {
    return reinterpret_cast<const Record*>(ThisThreadsBlock().ExceptionList);
}

// What stands behind the outermost record.
const Record* End() {
    return reinterpret_cast<const Record*>(~ULONG_PTR{0});
}

// Where the stack is good for a record from `low` on.
bool IsRecord(const Record* record, ULONG_PTR low, const StackLimits& stack) {
    const auto address = reinterpret_cast<ULONG_PTR>(record);
    return address % alignof(Record) == 0 && address >= low &&
           address <= stack.high - sizeof(Record);
}

// Calls `accept` with each record from `record` to before `end`. False when the chain does not lead
// there, or one was not accepted.
template <typename Accept>
bool Walk(const Record* record, const void* end, const Accept& accept) {
    const StackLimits stack = ThisThreadsStackLimits();
    ULONG_PTR low = stack.low;
    for (; record != end; record = record->outer) {
        if (!IsRecord(record, low, stack) || !accept(*record)) return false;
        low = reinterpret_cast<ULONG_PTR>(record + 1);
    }
    return true;
}

// Overruns write there.
bool IsOnStack(const void* handler) {
    const StackLimits stack = ThisThreadsStackLimits();
    const auto address = reinterpret_cast<ULONG_PTR>(handler);
    return address >= stack.low && address < stack.high;
}

bool IsAsked(const Record& record, const HandlerRules& rules) {
    return !IsOnStack(record.handler) && IsCalled(record.handler, rules);
}

}  // namespace

StackLimits ThisThreadsStackLimits() {
    const NT_TIB& block = ThisThreadsBlock();
    return {reinterpret_cast<ULONG_PTR>(block.StackLimit),
            reinterpret_cast<ULONG_PTR>(block.StackBase)};
}

bool ExceptionChainReaches(const void* target) {
    return Walk(Innermost(), target, [](const Record&) { return true; });
}

bool ExceptionChainIsAsked(const void* target, const void* lastHandler) {
    const HandlerRules rules = CurrentHandlerRules();
    if (!Walk(Innermost(), target, [&](const Record& each) { return IsAsked(each, rules); }))
        return false;
    if (!rules.checksWholeChain || !lastHandler) return true;
    const void* last = nullptr;
    return Walk(Innermost(), End(),
                [&](const Record& each) {
                    last = each.handler;
                    return !IsOnStack(each.handler);
                }) &&
           last == lastHandler;
}

bool ExceptionChainBegins() {
    const Record* const first = Innermost();
    const StackLimits stack = ThisThreadsStackLimits();
    return IsRecord(first, stack.low, stack) && IsAsked(*first, CurrentHandlerRules());
}

const void* LastExceptionHandler() {
    const void* last = nullptr;
    const bool isSound = Walk(Innermost(), End(), [&](const Record& each) {
        last = each.handler;
        return !IsOnStack(each.handler);
    });
    return isSound ? last : nullptr;
}

}  // namespace tessary::susiectl
