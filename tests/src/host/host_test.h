// What the tests of host processes share.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/host_connection.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary::test {

inline const std::wstring kProgram = FinishedFolder() + L"tessary-host32.exe";

class HostTest : public PluginTest {
  protected:
    HostTest() {
        SetPluginConnector([this](const std::wstring& plugin) {
            return std::make_unique<HostConnection>(plugin, pool_);
        });
    }
    ~HostTest() override { SetPluginConnector({}); }

    // A way to a copy of a test plug-in of its own.
    std::unique_ptr<HostConnection> Connected(const std::wstring& original,
                                              std::string_view script) {
        return std::make_unique<HostConnection>(Plugin(original, script, NewName(L".spi")), pool_);
    }
    std::wstring NewPlugin(std::string_view script = {}) const {
        return Plugin(L"iftst.spi", script, NewName(L".spi"));
    }
    PluginSource Picture() { return {.name = ToAnsi(PictureFile())}; }
    PluginSource Archive() { return {.name = ToAnsi(ArchiveFile())}; }
    static int32_t Errors(const std::wstring& path) { return ReadErrorCount(path, {}); }

    HostPool pool_{kProgram, {.asking = 1500, .working = 1500}};
};

}  // namespace tessary::test
