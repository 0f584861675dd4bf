// Which file a path leads to, whatever its spelling.
#pragma once

#include <string>
#include <string_view>

namespace tessary {

// A text that is the same for all paths to one file or folder: in upper and lower case, by short
// names and through links. Of a path that leads to none, or to one that the system does not tell
// apart, its full path in upper case.
std::wstring IdentityOf(std::wstring_view path);

// Whether both lead to the same file or folder.
bool IsSameFile(std::wstring_view one, std::wstring_view other);

}  // namespace tessary
