// What the settings store remembers about plug-ins: their failures, and which version of a file
// these belong to. A plug-in is named by its full path, so that files of one name in two folders
// have two histories.
//
// Earlier versions of the program knew plug-ins by their file name without folder. What they have
// left is taken over, once, by the file whose date it bears (CheckFileDate). A bare file name still
// names such an old history here. In the same way plug-ins of the program's folder keep their
// history when that is moved.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// All routines here throw RaisedError when the store cannot be accessed.

// Failures of one function of a plug-in, or of all of them (key `Total`) for an empty name. What
// is no number counts as 0.
int32_t ReadErrorCount(std::wstring_view plugin, std::wstring_view function);

// Adds one to a function's failures and to `Total`.
void IncrementErrorCount(std::wstring_view plugin, std::wstring_view function);

// The section of the store that has a log of a plug-in: `C:/folder/name.spi_SPI_ERRORLOG`.
inline constexpr wchar_t kErrorLog[] = L"_SPI_ERRORLOG";
inline constexpr wchar_t kEndLog[] = L"_SPI_ENDLOG";  // plugin_ends.h
std::wstring PluginSection(std::wstring_view plugin, std::wstring_view log);

// The functions that have failed, by name, and how often each has.
struct FunctionErrors {
    std::wstring function;
    int32_t count = 0;
};
std::vector<FunctionErrors> ReadFunctionErrors(std::wstring_view plugin);

// Forgets all failures and ends of a plug-in, those of its loading too.
void ForgetFailures(std::wstring_view plugin);

// Notes that the program ended while it loaded this plug-in.
void NoteFatalLoad(std::wstring_view plugin);

// Whether that has happened twice in a row, with no load between that went well. To load it again
// would keep the program from starting: it stays so until its failures are forgotten.
bool KeepsEndingTheProgram(std::wstring_view plugin);

// To be called after the plug-in was loaded and the program still lives.
void NoteLoaded(std::wstring_view plugin);

// Compares the plug-in file's date and time with the one last seen, and takes over what earlier
// versions of the program have known about it. For a new or replaced file forgets all failures,
// remembers the new date and answers true; where very many plug-ins are known, those that are not
// there are forgotten then. A file that cannot be found changes nothing.
bool CheckFileDate(const std::wstring& pluginPath);

}  // namespace tessary
