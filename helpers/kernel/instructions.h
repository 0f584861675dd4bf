// Which instructions of the processor the resize uses. All of them come to the same bytes.
#pragma once

// On 64-bit Windows the compiler would keep whole registers on a stack that is not aligned for
// them.
#if defined(__GNUC__) && (defined(__i386__) || (defined(__x86_64__) && !defined(_WIN64)))
#define TESSARY_MAY_USE_AVX2 1
#else
#define TESSARY_MAY_USE_AVX2 0
#endif

namespace tessary::kernel {

enum class Instructions {
    kSse2,  // every processor has them
    kAvx2,  // twice as many samples at a time
};

// The widest that this processor and its system have.
inline Instructions BestInstructions() {
#if TESSARY_MAY_USE_AVX2
    if (__builtin_cpu_supports("avx2")) return Instructions::kAvx2;
#endif
    return Instructions::kSse2;
}

}  // namespace tessary::kernel
