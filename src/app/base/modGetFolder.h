// The folders that the program's defaults rest on.
#pragma once

#include <string>

namespace tessary {

// The folder of the executable with a trailing backslash. Asked of the system once, then
// remembered.
const std::wstring& AppFolder();

// The Windows folder with a trailing backslash.
std::wstring WindowsFolder();

// The user's temporary folder with a trailing backslash.
std::wstring TemporaryFolder();

// Where the program keeps the user's files on this machine, with a trailing backslash; it may not
// be there yet. Empty when the system does not tell.
std::wstring LocalDataFolder();

}  // namespace tessary
