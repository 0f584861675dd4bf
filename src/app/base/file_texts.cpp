#include "app/base/file_texts.h"

#include <windows.h>

#include <cwchar>
#include <iterator>

namespace tessary {

std::wstring GroupedNumber(uint64_t number) {
    std::wstring digits = std::to_wstring(number);
    for (size_t i = digits.size(); i > 3;)
        digits.insert(i -= 3, 1, L',');
    return digits;
}

std::wstring FileSizeText(uint64_t bytes) {
    constexpr uint64_t kKilo = 1024;
    std::wstring exact = GroupedNumber(bytes) + L" バイト";
    if (bytes < kKilo) return exact;
    const bool isMega = bytes >= kKilo * kKilo;
    wchar_t shown[64];
    std::swprintf(shown, std::size(shown), L"%.1f",
                  static_cast<double>(bytes) / static_cast<double>(isMega ? kKilo * kKilo : kKilo));
    return shown + std::wstring(isMega ? L" MB (" : L" KB (") + exact + L")";
}

std::wstring FileTimeText(uint64_t time) {
    const FILETIME file{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    SYSTEMTIME universal{};
    SYSTEMTIME local{};
    if (!FileTimeToSystemTime(&file, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local)) {
        return {};
    }
    wchar_t text[64];
    std::swprintf(text, std::size(text), L"%04d/%02d/%02d %02d:%02d:%02d", local.wYear,
                  local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
    return text;
}

}  // namespace tessary
