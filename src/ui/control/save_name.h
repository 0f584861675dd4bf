// Under which name and in which format a picture is saved.
#pragma once

#include <cstdint>
#include <string>

#include "app/settings/saver_format.h"

namespace tessary {

// A name with an extension of the format: its own where that is one of them in any spelling, else
// the usual one, in place of another format's or behind the name. A file is always what its name
// says.
std::wstring WithExtensionOf(const SaverFormat& format, const std::wstring& name);

// The name to propose for a picture of that file or archive member: its own, without extension and
// without what file names must not hold, and with the page's number where there are several (0:
// there are none). `isSpread`: it is of two pages, of which that is one.
std::wstring ProposedStem(const std::wstring& pictureName, uint32_t page = 0,
                          bool isSpread = false);

}  // namespace tessary
