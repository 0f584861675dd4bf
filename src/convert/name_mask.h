// The mask language of the converter's file-name filter.
#pragma once

#include <string_view>

namespace tessary {

// Whether the whole of `name` matches `mask`. `*` stands for any run of characters (also none), `?`
// for one, `#` for one digit, `[list]` for one of the listed characters and `[!list]` for one that
// is not listed. A list holds characters and ranges such as `a-z`; `-` stands for itself at either
// end of it, `*`, `?`, `#` and `[` everywhere; `]` ends it. `[]` stands for nothing at all, `[!]`
// for the character `!`, and a `[` that no `]` follows for itself. A character is one unit of
// UTF-16; upper and lower case differ.
bool MatchesNameMask(std::wstring_view name, std::wstring_view mask);

}  // namespace tessary
