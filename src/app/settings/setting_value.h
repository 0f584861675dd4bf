// Settings values as text: decimal numbers, "True" and "False".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessary {

// Text to number or Boolean, as a person may have typed it: blanks around it, a sign, a decimal
// fraction or exponent (rounded half to even), "True" and "False" in any case. Throws RaisedError
// with kErrorTypeMismatch for anything else and with kErrorOverflow for what the type cannot hold.
int16_t ToInt16(std::wstring_view text);
int32_t ToInt32(std::wstring_view text);
bool ToBoolean(std::wstring_view text);

// Number or Boolean to the text that is stored.
std::wstring ToSettingText(int32_t value);
std::wstring ToSettingText(bool value);

}  // namespace tessary
