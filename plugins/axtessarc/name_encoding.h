// Which bytes a member's name is made of. Most formats store names without saying in which
// encoding: that of the system they were packed on, Shift-JIS as often as UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tessary::unpack {

// Whether a name without any mark is UTF-8: it is valid, holds something beyond ASCII, and would
// make no sense in Shift-JIS. Names of pairs of half-width katakana are valid in both; they count
// as Shift-JIS.
bool LooksLikeUtf8(std::string_view name);

// Puts back the second halves of Shift-JIS characters that were taken for the separator `\` and
// turned into `/`, which can be no second half.
void RestoreSecondHalves(std::string& name);

// UTF-8 of UTF-16 code units; lone surrogates become U+FFFD.
std::string Utf8FromUtf16(std::span<const uint16_t> units);

// The same for the system's wide characters, whichever width they have.
std::string Utf8FromWide(const wchar_t* text);

}  // namespace tessary::unpack
