// Tells return addresses on a stack from its other words.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// True for an address in executable pages with a call instruction before it. Remembers the pages
// that it has looked at last: stacks name few.
class ReturnAddressTest {
  public:
    bool operator()(ULONG_PTR address);

  private:
    ULONG_PTR begin_ = 0;
    ULONG_PTR end_ = 0;
    bool isExecutable_ = false;
};

}  // namespace tessary::susiectl
