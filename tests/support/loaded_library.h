// The finished DLLs, used as the program uses them: loaded from its folder, their functions found
// by name.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "app/base/handles.h"
#include "tests/support/finished_folder.h"

namespace tessary::test {

// An address that becomes a pointer to whatever kind of function it is kept in.
struct FoundFunction {
    FARPROC address;

    template <typename Function>
    operator Function*() const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }
};

// A file of the application folder, loaded for as long as this lives.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const std::wstring& fileName)
        : module_(LoadLibraryW((FinishedFolder() + fileName).c_str())) {
        EXPECT_TRUE(module_) << fileName << ' ' << GetLastError();
    }

    // The function of that name, which must be there.
    FoundFunction operator[](const char* name) const {
        const FoundFunction found{GetProcAddress(module_.Get(), name)};
        EXPECT_NE(found.address, nullptr) << name;
        return found;
    }

  private:
    UniqueModule module_;
};

}  // namespace tessary::test
