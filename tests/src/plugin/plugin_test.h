// What the tests of the plug-in host share: plug-ins in a folder of their own, settings that are
// not the user's, messages that are recorded.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/settings_store.h"
#include "plugin/call_log.h"
#include "plugin/clsSusie.h"
#include "plugin/plugin_log.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/child_process.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {

// The file that RunAsChild names to a test; for one that is run so, with susiectl.dll.
// With the others, too, a heap that is ruined there shows it elsewhere now and then.
inline std::wstring FileOfParent() {
    LoadLibraryW((FinishedFolder() + L"susiectl.dll").c_str());
    return _wgetenv(L"TESSARY_TEST_FILE");
}

// For the directives that take bytes.
inline std::string HexOf(std::span<const uint8_t> bytes) {
    std::string digits;
    for (const uint8_t byte : bytes) {
        digits += "0123456789abcdef"[byte >> 4];
        digits += "0123456789abcdef"[byte & 15];
    }
    return digits;
}

class PluginTest : public testing::Test {
  protected:
    PluginTest() { LoadHelperLibraries(); }

    // A copy of a test plug-in in the test's folder, with a script (tests/plugins/README.md).
    std::wstring Plugin(const std::wstring& original, std::string_view script = {},
                        std::wstring name = {}) const {
        if (name.empty()) name = original;
        std::filesystem::copy_file(TestPluginPath(original), folder_.Path() + name);
        if (!script.empty()) folder_.Write(name + L".script", script);
        return folder_.Path() + name;
    }

    // New files: a picture of 3 x 2 pixels, and an archive of two members, with directives.
    std::wstring PictureFile(const std::string& directives = {}) const {
        return folder_.Write(NewName(L".tst"), "TST 3x2x24\n" + directives + "\n");
    }
    std::wstring ArchiveFile(const std::string& directives = {}) const {
        return folder_.Write(NewName(L".tsa"),
                             ArchiveOf({{"dir/a", "first"}, {"b", "second"}}, directives));
    }
    std::wstring NewName(const wchar_t* extension) const {
        return std::to_wstring(++number_) + extension;
    }

    static bool IsLoaded(const std::wstring& path) {
        return GetModuleHandleW(path.c_str()) != nullptr;
    }
    // How often a function of a loaded plug-in was called.
    static int Calls(const std::wstring& path, const char* function) {
        return IsLoaded(path) ? TestCallCount(GetModuleHandleW(path.c_str()), function) : -1;
    }
    // Makes a file look replaced.
    static void Touch(const std::wstring& path) {
        const auto date = std::filesystem::last_write_time(path) + std::chrono::seconds(5);
        std::filesystem::last_write_time(path, date);
    }
    static OwnedBlock Block(std::string_view content) {
        OwnedBlock block(LocalAlloc(LMEM_MOVEABLE, content.size()));
        std::memcpy(BlockLock(block.Get()).Address(), content.data(), content.size());
        return block;
    }
    // As if a run had ended in a call.
    static void EndRunIn(const std::wstring& function, const std::wstring& plugin) {
        WriteCallLog({function, plugin, {}});
        RecoverInterruptedCalls();
    }
    static bool CallIsLogged() { return GetSetting(L"SPI_CALLLOG", L"SPI", L"-") != L"-"; }

    // Runs one test of this program as a process of its own, on the same settings, and answers its
    // exit status; STILL_ACTIVE when it does not end. The test finds `file` by FileOfParent.
    DWORD RunAsChild(const std::wstring& test, const std::wstring& file = {}) const {
        return ChildProcess::OfThisProgram(
                   test, {.environment = {{L"TESSARY_SETTINGS_KEY", store_.KeyPath()},
                                          {L"TESSARY_TEST_FILE", file}}})
            .ExitCode();
    }

    // Binds a picture plug-in to a new picture, an archive plug-in to a new archive.
    void BindPicture(const std::string& directives) {
        if (plugin_.DllName().empty()) plugin_.SetDllName(Plugin(L"iftst_preview.spi"));
        plugin_.SetFile(PictureFile(directives));
    }
    void BindArchive(const std::string& directives) {
        if (plugin_.DllName().empty()) plugin_.SetDllName(Plugin(L"axtsa.spi"));
        plugin_.SetFile(ArchiveFile(directives));
    }
    uint32_t Decode(uint32_t flags = 0, const SusieProgress& progress = {}) {
        return plugin_.DecodePicture(DecodeTarget::kMemory, flags, progress, {}, &picture_);
    }
    std::string Extracted(int32_t index, const SusieProgress& progress = {}) {
        const OwnedBlock block = plugin_.DecodeArchive(index, progress);
        const BlockLock lock(block.Get());
        return {static_cast<const char*>(lock.Address()), lock.Size()};
    }
    // What the plug-in has answered to what is expected to fail; 0 when it does not.
    template <typename Body>
    static uint32_t Failure(Body&& body) {
        try {
            body();
            return 0;
        } catch (const DecodeError& error) {
            return error.Result();
        }
    }
    uint32_t DecodeFailure(uint32_t flags = 0, const SusieProgress& progress = {}) {
        return Failure([&] { Decode(flags, progress); });
    }

    RedirectedSettings store_;
    TemporaryFolder folder_;
    RecordedMessages messages_;
    clsSusie plugin_;
    Picture picture_;

  private:
    mutable int number_ = 0;
};

// The number that `body` raises; 0 when it raises nothing.
template <typename Body>
uint32_t Raised(Body&& body) {
    try {
        body();
        return 0;
    } catch (const RaisedError& error) {
        return error.Number();
    }
}

}  // namespace tessary::test
