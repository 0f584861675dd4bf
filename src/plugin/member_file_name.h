// File names for what is extracted from archives, whose own names may be anything.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessary {

// The name under which a member can be written below a folder of ours: relative, with `\` between
// folders, and with nothing in it that leads out of the folder or means something else to the
// system. Drives, leading separators and `.` and `..` are left out; `_` stands for characters that
// no file name has, and before names of devices; blanks and dots at the end of a part are cut;
// parts that are too long are shortened before their extension. Nothing when no file's name is
// left. `member` is UTF-16 already: in the code page a separator may be half of a character.
std::optional<std::wstring> SafeMemberName(std::wstring_view member);

// Gives the members of one archive safe names, to each its own.
class MemberFileNames {
  public:
    // As SafeMemberName; the second of one name (without regard to case) becomes `name (2).ext`.
    std::optional<std::wstring> NameFor(std::wstring_view member);

  private:
    // Names given, in upper case, with the number that the next of this name tries.
    std::unordered_map<std::wstring, uint32_t> given_;
};

}  // namespace tessary
