// Where the system looks for the DLLs that a plug-in needs.
#pragma once

#include <string>

namespace tessary::susiectl {

// For as long as it lives the system looks in the program's folder where it otherwise looks in the
// current one, which may be anywhere: old plug-ins want DLLs beside the program.
class LibrarySearchScope {
  public:
    LibrarySearchScope();
    ~LibrarySearchScope();
    LibrarySearchScope(const LibrarySearchScope&) = delete;
    LibrarySearchScope& operator=(const LibrarySearchScope&) = delete;

  private:
    std::wstring before_;
};

}  // namespace tessary::susiectl
