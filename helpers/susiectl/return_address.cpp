#include "helpers/susiectl/return_address.h"

#include <cstdint>

namespace tessary::susiectl {
namespace {

constexpr ULONG_PTR kLongestCall = 7;  // bytes, of those that are common

// A call of an address that a register or memory holds: FF /2, by the length of its operand.
bool IsIndirectCall(const uint8_t* code, size_t length) {
    if (code[0] != 0xFF || (code[1] & 0x38) != 0x10) return false;
    const unsigned mode = code[1] >> 6;
    const unsigned base = code[1] & 7;
    const bool isIndexed = mode != 3 && base == 4;
    const bool isAbsolute = mode == 0 && (base == 5 || (isIndexed && (code[2] & 7) == 5));
    size_t size = isIndexed ? 3 : 2;
    if (mode == 1) size += 1;
    if (mode == 2 || isAbsolute) size += 4;
    return size == length;
}

bool IsBehindCall(const uint8_t* code) {
    if (code[-5] == 0xE8) return true;
    for (size_t length = 2; length <= kLongestCall; ++length)
        if (IsIndirectCall(code - length, length)) return true;
    return false;
}

}  // namespace

bool ReturnAddressTest::operator()(ULONG_PTR address) {
    constexpr ULONG_PTR kLowest = 0x10000;  // nothing is below
    if (address < kLowest) return false;
    if (address < begin_ || address >= end_) {
        MEMORY_BASIC_INFORMATION pages{};
        if (!VirtualQuery(reinterpret_cast<void*>(address), &pages, sizeof pages)) return false;
        constexpr DWORD kReadable =
            PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
        begin_ = reinterpret_cast<ULONG_PTR>(pages.BaseAddress);
        end_ = begin_ + pages.RegionSize;
        isExecutable_ = pages.State == MEM_COMMIT && (pages.Protect & kReadable) &&
                        !(pages.Protect & PAGE_GUARD);
    }
    return isExecutable_ && address - begin_ >= kLongestCall &&
           IsBehindCall(reinterpret_cast<const uint8_t*>(address));
}

}  // namespace tessary::susiectl
