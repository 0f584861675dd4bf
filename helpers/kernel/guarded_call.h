// The boundary that every entry of the kernel runs inside.
#pragma once

#include <new>
#include <stdexcept>

#include "helpers/kernel/kernel_types.h"

namespace tessary::kernel {

// Runs `call`, which answers a KernelResult; what it throws becomes one.
template <typename Call>
KernelResult GuardedCall(const Call& call) noexcept {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return kKernelOutOfMemory;
    } catch (const std::length_error&) {  // a container larger than the address space
        return kKernelOutOfMemory;
    } catch (...) {
        return kKernelInternalError;
    }
}

}  // namespace tessary::kernel
