// Under which name and in which format a picture is saved.
#pragma once

#include <optional>
#include <string>

namespace tessary {

// Formats in the order of the save dialog's list, which counts them from 1.
enum class SaveFormat { kBMP = 1, kPNG = 2, kJPEG = 3 };
constexpr int kSaveFormatCount = 3;

// The extension that the format's files get, without its dot.
const wchar_t* ExtensionOf(SaveFormat format);

// The format that a name's extension stands for, in any of its spellings; none for all others.
std::optional<SaveFormat> FormatOfName(const std::wstring& name);

// A name with the extension of a format in place of one of the formats, or behind the name: a file
// is always what its name says.
std::wstring WithExtensionOf(SaveFormat format, const std::wstring& name);

// The name to propose for a picture of that file or archive member: its own, without extension and
// without what file names must not hold.
std::wstring ProposedStem(const std::wstring& pictureName);

}  // namespace tessary
