// susiectl.dll and test plug-ins that are loaded through it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "plugin/susie_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {

// Runs `work`, which may hang, in a thread of its own, which owns it. False when the thread has not
// ended after so many milliseconds, and goes on. Not with std::thread: one that is detached while
// it ends may take the handle of the next one with it.
bool EndsInThread(std::function<void()> work, DWORD longest);

// As the program uses it: loaded from the application folder at the first use, and then for good.
const SusieLibrary& Susiectl();

// A copy of a test plug-in, loaded through susiectl.dll for as long as this lives.
class LoadedPlugin {
  public:
    using Change = std::function<void(IMAGE_OPTIONAL_HEADER32&)>;

    // With a script beside it, and with another header.
    explicit LoadedPlugin(const std::wstring& fileName, const std::string& script = {},
                          const Change& change = {});
    ~LoadedPlugin();
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    HMODULE Module() const { return module_; }
    FARPROC operator[](const char* function) const { return GetProcAddress(module_, function); }
    // How often the function has been called.
    int Calls(const char* function) const;

    // Has the plug-in decode a picture of 4 x 3 pixels with these directives, in memory, and frees
    // what it hands out.
    int DecodeWith(const std::string& directives, susie::ProgressCallback progress = nullptr,
                   LONG_PTR userData = 0) const;

  private:
    TemporaryFolder folder_;
    HMODULE module_;
};

}  // namespace tessary::test
