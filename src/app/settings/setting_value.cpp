#include "app/settings/setting_value.h"

#include <cmath>
#include <limits>

#include "app/base/error.h"
#include "app/base/text.h"

namespace tessary {
namespace {

constexpr std::wstring_view kTrue = L"True";
constexpr std::wstring_view kFalse = L"False";

[[noreturn]] void Mismatch() {
    throw RaisedError(kErrorTypeMismatch, L"型が一致しません。");
}

double ToNumber(std::wstring_view text) {
    text = TrimSpaces(text);
    if (EqualsIgnoreCase(text, kTrue)) return -1;
    if (EqualsIgnoreCase(text, kFalse)) return 0;
    // wcstod would also take "inf", "nan" and hexadecimal forms.
    if (text.empty() || text.find_first_not_of(L"0123456789+-.eE") != std::wstring_view::npos) {
        Mismatch();
    }
    const std::wstring copy(text);
    wchar_t* end = nullptr;
    const double number = std::wcstod(copy.c_str(), &end);
    if (end != copy.c_str() + copy.size()) Mismatch();
    return number;
}

template <typename Integer>
Integer ToInteger(std::wstring_view text) {
    const double number = std::nearbyint(ToNumber(text));
    // Written so that infinity fails too.
    if (!(number >= std::numeric_limits<Integer>::min() &&
          number <= std::numeric_limits<Integer>::max())) {
        throw RaisedError(kErrorOverflow, L"オーバーフローしました。");
    }
    return static_cast<Integer>(number);
}

}  // namespace

int16_t ToInt16(std::wstring_view text) {
    return ToInteger<int16_t>(text);
}

int32_t ToInt32(std::wstring_view text) {
    return ToInteger<int32_t>(text);
}

bool ToBoolean(std::wstring_view text) {
    return ToNumber(text) != 0;
}

std::wstring ToSettingText(int32_t value) {
    return std::to_wstring(value);
}

std::wstring ToSettingText(bool value) {
    return std::wstring(value ? kTrue : kFalse);
}

}  // namespace tessary
