// Files and blocks in the form in which plug-ins take them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"

namespace tessary {

// The first bytes of a file or block for IsSupported, padded with zeros: what plug-ins may read,
// and as much again for those that read on.
using HeaderBlock = std::array<uint8_t, 2 * susie::kHeaderBlockSize>;

// The header of a block; a longer block is cut.
HeaderBlock HeaderOf(std::span<const uint8_t> block);

// The header of a file; nothing when it cannot be read.
std::optional<HeaderBlock> ReadFileHeader(const std::wstring& path);

// A whole file in a movable local-memory block; empty when the file cannot be read, has no bytes or
// does not fit into memory.
OwnedBlock ReadWholeFile(const std::wstring& path);

// A file's name without folder for plug-ins that are given its content in memory: in the system's
// code page, with `_` for what that cannot hold. The extension, by which some plug-ins judge, is
// kept; of a name that is too long only it is left.
std::string AnsiNameOf(const std::wstring& path);

// The name that plug-ins are given for a block, which says where it comes from: as it is when that
// fits, else AnsiNameOf. At most 259 bytes, what plug-ins have room for.
std::string AnsiSourceNameOf(const std::wstring& name);

}  // namespace tessary
