// Paths as texts, and the questions about files that every floor asks.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// Appends "\" when the text is longer than 3 characters and does not end in one: a bare drive comes
// back as it is.
std::wstring AddBackslash(std::wstring_view path);

// Drops the last character when the text is 3 characters or shorter, or ends in "\". A short text
// loses its last character whatever it is, so that a drive's root becomes the bare drive.
std::wstring RemoveBackslash(std::wstring_view path);

// What stands behind the last backslash; the whole text when there is none.
std::wstring FileNameOf(std::wstring_view path);

// What stands before the last backslash, with it; empty when there is none.
std::wstring FolderOf(std::wstring_view path);

// The file name's extension without its dot, in upper case; empty when there is none.
std::wstring UpperExtensionOf(std::wstring_view path);

// The full path of a name that may be relative to the current folder; the text itself when the
// system cannot tell.
std::wstring FullPathOf(std::wstring_view path);

// The form of a path that the system takes whatever its length: long paths get the `\\?\` prefix.
std::wstring ExtendedPath(std::wstring_view path);

// Whether a file or folder of that name exists.
bool PathExists(std::wstring_view path);
bool IsFolder(std::wstring_view path);

// The plain files directly in a folder, as full paths in listing order; sub-folders are left out.
// A pattern (`*`, `?`) means the names themselves and not the short ones that the system has for
// them.
std::vector<std::wstring> FilesInFolder(std::wstring_view folder, std::wstring_view pattern = L"*");

// The names of all that is directly in a folder, files and folders, in listing order.
std::vector<std::wstring> NamesInFolder(std::wstring_view folder);

// As FilesInFolder, but for hidden and system files.
// `whole`, where it is given, becomes false when the system has not listed the folder to its end.
std::vector<std::wstring> PlainFilesInFolder(std::wstring_view folder,
                                             std::wstring_view pattern = L"*",
                                             bool* whole = nullptr);

// A name for the file that ANSI interfaces (plug-ins) can open: the path itself, else its short
// form; nothing when the code page holds neither or both are longer than such interfaces take (259
// bytes).
std::optional<std::string> AnsiPathOf(std::wstring_view path);

}  // namespace tessary
