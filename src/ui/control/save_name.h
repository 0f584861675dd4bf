// Under which name and in which format a picture is saved.
#pragma once

#include <string>

namespace tessary {

// Formats in the order of the save dialog's list, which counts them from 1.
enum class SaveFormat { kBMP = 1, kPNG = 2, kJPEG = 3 };
constexpr int kSaveFormatCount = 3;

// The extension that the format's files get, without its dot.
const wchar_t* ExtensionOf(SaveFormat format);

struct SaveName {
    std::wstring path;
    SaveFormat format;
};

// The name that is saved to when the user has typed `path` with `format` chosen in the list. An
// extension of another of the formats wins over the list: who types it means it. JPEG's other
// extensions become jpg; behind all other names the format's extension is put.
SaveName CompleteSaveName(const std::wstring& path, SaveFormat format);

// A name with the extension of a format in place of one of the formats, or behind the name.
std::wstring WithExtensionOf(SaveFormat format, const std::wstring& name);

// The name to propose for a picture of that file or archive member: its own, without extension and
// without what file names must not hold.
std::wstring ProposedStem(const std::wstring& pictureName);

}  // namespace tessary
