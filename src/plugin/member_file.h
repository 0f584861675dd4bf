// Writing an extracted member to its file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tessary {

// Writes the file `fileName`, a safe relative name (member_file_name.h), below `folder`, which must
// exist. Folders in between are made; one that is a link to another place is refused, so that
// nothing is ever written elsewhere. What is there is replaced by the complete file. 0, or the
// system's error when it cannot be written; no part of it is left then. `changed`: its date, as
// files::FileDates has it.
uint32_t WriteMemberFile(const std::wstring& folder, const std::wstring& fileName,
                         std::span<const uint8_t> content, uint64_t changed = 0);

}  // namespace tessary
