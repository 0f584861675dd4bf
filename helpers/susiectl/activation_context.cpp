#include "helpers/susiectl/activation_context.h"

#include <cstring>

#include "helpers/susiectl/thread_block.h"

namespace tessary::susiectl {
namespace {

// Where the thread's block names the stack, whose first word is the innermost frame: the same since
// Windows Vista.
#ifdef _WIN64
constexpr size_t kActivationStack = 0x2C8;
#else
constexpr size_t kActivationStack = 0x1A8;
#endif

// Null where the thread has no stack yet.
void** Innermost() {
    void** stack;
    std::memcpy(&stack, ThreadBlock() + kActivationStack, sizeof stack);
    return stack;
}

}  // namespace

void* ActivationFrame() {
    void** const innermost = Innermost();
    return innermost ? *innermost : nullptr;
}

void SetActivationFrame(void* frame) {
    if (void** const innermost = Innermost()) *innermost = frame;
}

}  // namespace tessary::susiectl
