// The form of an exported function.
#pragma once

#include <new>

// Starts the definition of an entry.
#define SUSIECTL_ENTRY extern "C" __declspec(dllexport)

namespace tessary::susiectl {

// What `work` answers, or `failed` when there was no memory for it: the only thing that can go
// wrong in our own part of a call, and no exception may leave the library.
template <typename Answer, typename Work>
Answer WithoutExceptions(Answer failed, const Work& work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return failed;
    }
}

}  // namespace tessary::susiectl
