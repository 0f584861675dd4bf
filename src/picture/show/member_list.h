// Where the members of an archive are listed. The control bar implements it.
#pragma once

#include <span>

#include "plugin/archive_members.h"

namespace tessary {

class MemberList {
  public:
    // Takes all members of an archive, in the order in which they are to be listed, in place of
    // those before them.
    virtual void SetMembers(std::span<const ListedMember> members) = 0;

  protected:
    ~MemberList() = default;
};

}  // namespace tessary
