// Text: UTF-16 inside the program, the system's ANSI code page where the outside world is ANSI.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// Text of the system code page as UTF-16; bytes that are no character of it become the default
// character. Where it is UTF-8, text that is none is taken for Shift_JIS if it can be: plug-ins
// hand on what they found in old archives, or bring texts of their own.
std::wstring FromAnsi(std::string_view text);

// The same on a system of that code page.
std::wstring FromAnsi(std::string_view text, unsigned systemCodePage);

// Text in the system code page; characters that it cannot hold become its default character.
std::string ToAnsi(std::wstring_view text);

// Text in the system code page, or nothing when a character would be lost.
std::optional<std::string> ToAnsiExact(std::wstring_view text);

// Upper case of every character, independent of the user's locale.
std::wstring ToUpper(std::wstring_view text);

// Whether two texts are equal without regard to case, as file names are compared.
bool EqualsIgnoreCase(std::wstring_view left, std::wstring_view right);

// Whether the whole of `name` matches `pattern`, where `*` stands for any run of characters (also
// none) and
// `?` for exactly one. Compares case-sensitively: upper-case both for file names.
bool MatchesWildcard(std::wstring_view name, std::wstring_view pattern);

// Fills `pieces` with the texts between the occurrences of a character, empty ones too, and answers
// how many there are. A code of 256 or more divides nothing: 0 pieces.
int SplitText(std::wstring_view text, int characterCode, std::vector<std::wstring>& pieces);

// `text` without the spaces at its two ends.
std::wstring_view TrimSpaces(std::wstring_view text);

}  // namespace tessary
