#include "plugins/iftesswic/gif_codes.h"

#include <algorithm>

namespace tessary::wic {
namespace {

constexpr unsigned kMostFirstBits = 11;
constexpr unsigned kMostCodeBits = 12;

}  // namespace

GifCodes::GifCodes(uint8_t firstBits)
    : clearCode_(1u << std::min<unsigned>(firstBits, kMostFirstBits)) {
    ended_ = firstBits == 0 || firstBits > kMostFirstBits;
    std::fill_n(lengths_.begin(), clearCode_, uint16_t{1});
    Clear();
}

void GifCodes::Clear() {
    codes_ = clearCode_ + 2;
    before_ = kMostCodes;
    for (codeBits_ = 1; clearCode_ >> codeBits_ != 0; ++codeBits_) {
    }
}

void GifCodes::Add(uint8_t byte) {
    if (ended_) return;
    bits_ |= uint32_t{byte} << bitCount_;
    bitCount_ += 8;
    while (bitCount_ >= codeBits_) {
        const unsigned length = codeBits_;
        ended_ = !Take(bits_ & ((1u << length) - 1));
        if (ended_) return;
        bits_ >>= length;
        bitCount_ -= length;
    }
}

bool GifCodes::Take(uint32_t code) {
    if (code == clearCode_) {
        Clear();
        return true;
    }
    const bool isFirst = before_ == kMostCodes;
    const bool isAdded = !isFirst && codes_ < kMostCodes;
    if (code == clearCode_ + 1 || code >= (isFirst ? clearCode_ : codes_ + isAdded)) return false;
    if (isAdded) {
        // Longer than the table is deep no code can be.
        lengths_[codes_++] = static_cast<uint16_t>(lengths_[before_] + 1);
        if (codes_ == 1u << codeBits_ && codeBits_ < kMostCodeBits) ++codeBits_;
    }
    pixels_ += lengths_[code];
    before_ = code;
    return true;
}

}  // namespace tessary::wic
