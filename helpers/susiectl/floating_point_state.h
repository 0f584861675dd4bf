// The processor's floating-point settings: rounding, precision and which errors raise exceptions.
#pragma once

#include <cstdint>

namespace tessary::susiectl {

// The settings alone: x87 control word and MXCSR.
class FloatingPointState {
  public:
    // Takes the settings that hold now.
    FloatingPointState() {
        asm volatile("fnstcw %0" : "=m"(controlWord_));
        asm volatile("stmxcsr %0" : "=m"(mxcsr_));
    }

    // Puts them back, with the x87 stack empty and no error pending.
    void Restore() const {
        asm volatile(
            "fninit\n\t"
            "fldcw %0"
            :
            : "m"(controlWord_));
        asm volatile("ldmxcsr %0" : : "m"(mxcsr_));
    }

  private:
    uint16_t controlWord_;
    uint32_t mxcsr_;
};

// For as long as it lives `inside` holds; then everything, the x87 registers too, is as it was.
class FloatingPointScope {
  public:
    explicit FloatingPointScope(const FloatingPointState& inside) {
        asm volatile("fnsave %0" : "=m"(x87_));
        inside.Restore();
    }
    ~FloatingPointScope() {
        outside_.Restore();
        asm volatile("frstor %0" : : "m"(x87_));
    }
    FloatingPointScope(const FloatingPointScope&) = delete;
    FloatingPointScope& operator=(const FloatingPointScope&) = delete;

  private:
    FloatingPointState outside_;  // first: fnsave resets what it has saved
    uint8_t x87_[108];
};

}  // namespace tessary::susiectl
