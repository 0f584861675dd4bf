// susiectl.dll as the program uses it: loaded from the application folder, entries found by name.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <string_view>

#include "helpers/susiectl/susiectl.h"
#include "tests/support/loaded_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {

// Runs `work`, which may hang, in a thread of its own, which owns it. False when the thread has not
// ended after so many milliseconds, and goes on. Not with std::thread: one that is detached while
// it ends may take the handle of the next one with it.
bool EndsInThread(std::function<void()> work, DWORD longest);

struct SusiectlLibrary {
    LoadedLibrary library{L"susiectl.dll"};
    susiectl::SPILoadLibraryFunction loadLibrary = library[susiectl::kSPILoadLibrary];
    susiectl::SPILoadLibraryWFunction loadLibraryW = library[susiectl::kSPILoadLibraryW];
    susiectl::SPIFreeLibraryFunction freeLibrary = library[susiectl::kSPIFreeLibrary];
    susiectl::SPIIsMemoryDamagedFunction isMemoryDamaged = library[susiectl::kSPIIsMemoryDamaged];
    susiectl::GetPluginInfoEntry getPluginInfo = library[susiectl::kGetPluginInfo];
    susiectl::IsSupportedEntry isSupported = library[susiectl::kIsSupported];
    susiectl::GetPictureInfoEntry getPictureInfo = library[susiectl::kGetPictureInfo];
    susiectl::GetPictureEntry getPicture = library[susiectl::kGetPicture];
    susiectl::GetPictureEntry getPreview = library[susiectl::kGetPreview];
    susiectl::GetArchiveInfoEntry getArchiveInfo = library[susiectl::kGetArchiveInfo];
    susiectl::GetFileInfoEntry getFileInfo = library[susiectl::kGetFileInfo];
    susiectl::GetFileEntry getFile = library[susiectl::kGetFile];
    susiectl::ConfigurationDlgEntry configurationDlg = library[susiectl::kConfigurationDlg];
    susiectl::GetFileInformationFunction getFileInformation =
        library[susiectl::kGetFileInformation];
    susiectl::GetFileInformationWFunction getFileInformationW =
        library[susiectl::kGetFileInformationW];
};

// Loaded at the first use, and then for good.
const SusiectlLibrary& Susiectl();

// A test plug-in, loaded through susiectl.dll for as long as this lives.
class LoadedPlugin {
  public:
    explicit LoadedPlugin(const std::wstring& fileName);
    // A copy of iftst.spi in `folder`, with a script beside it.
    LoadedPlugin(const TemporaryFolder& folder, std::string_view script);
    // The same without a script, and with another header.
    LoadedPlugin(const TemporaryFolder& folder,
                 const std::function<void(IMAGE_OPTIONAL_HEADER32&)>& change);
    ~LoadedPlugin();
    LoadedPlugin(const LoadedPlugin&) = delete;
    LoadedPlugin& operator=(const LoadedPlugin&) = delete;

    HMODULE Module() const { return module_; }
    FARPROC operator[](const char* function) const { return GetProcAddress(module_, function); }

    // Has the plug-in decode a picture in memory, and frees what it hands out.
    int Decode(std::string_view picture, susie::ProgressCallback progress = nullptr,
               LONG_PTR userData = 0) const;

    // Has it decode "TST 4x3x24" with these directives.
    int DecodeWith(const std::string& directives) const;

  private:
    HMODULE module_;
};

}  // namespace tessary::test
