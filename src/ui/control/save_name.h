// Under which name and in which format a picture is saved.
#pragma once

#include <optional>
#include <string>

#include "picture/save/save_picture.h"

namespace tessary {

// The extension that the format's files get, without its dot.
const wchar_t* ExtensionOf(SaveFormat format);

// The format that a name's extension stands for, in any of its spellings; none for all others.
std::optional<SaveFormat> FormatOfName(const std::wstring& name);

// A name with an extension of the format: its own where that is one of them in any spelling, else
// the usual one, in place of another format's or behind the name. A file is always what its name
// says.
std::wstring WithExtensionOf(SaveFormat format, const std::wstring& name);

// The name to propose for a picture of that file or archive member: its own, without extension and
// without what file names must not hold.
std::wstring ProposedStem(const std::wstring& pictureName);

}  // namespace tessary
