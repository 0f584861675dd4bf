// What plug-ins tell about themselves, remembered from one run of the program to the next, so that
// a start loads none of those whose files have not changed since.
//
// The section `SPI_KNOWN` of the settings store has a value for each plug-in's full path. One that
// another version of the program has written, or that was damaged, is as good as none. Copies of
// the program that run at the same time share the section: each value is whole.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>

#include "plugin/file_stamp.h"
#include "plugin/left_out_plugin.h"
#include "plugin/plugin_connection.h"

namespace tessary {

// What is remembered of one file.
struct RememberedPlugin {
    FileStamp stamp;                         // of the file that was asked
    std::optional<LeftOutReason> refusal{};  // it is no plug-in: kNoDll, kOtherMachine, kNoPlugin
    PluginTraits traits{};                   // else

    bool operator==(const RememberedPlugin&) const = default;
};

// The memory for one loading of the plug-ins, and what they tell until the next. What the store
// does not take is not remembered; nothing here throws but for want of memory.
class PluginMemory {
  public:
    // Reads what is remembered.
    PluginMemory();

    // What is remembered of the file; null when that is nothing, or the file has changed since.
    const RememberedPlugin* Find(const std::wstring& path, const FileStamp& stamp);

    // Remembers a file. Refusals that need not last are forgotten instead, as others are when there
    // is nothing to remember.
    void Keep(const std::wstring& path, RememberedPlugin plugin);
    void Forget(const std::wstring& path);

    // Remembers what a plug-in tells by now, if it is remembered at all. The stamp stays: whether
    // its file is still the one that tells so shows at the next start.
    void Update(const std::wstring& path, const PluginTraits& traits);

    // Forgets the files of these folders, with a trailing backslash, that were neither looked for
    // nor kept through this object: they are gone. Where very many are remembered, those of all
    // folders.
    void ForgetGone(std::span<const std::wstring> folders);

  private:
    struct Entry {
        std::wstring path;
        std::optional<RememberedPlugin> plugin;  // nothing when it cannot be read
    };

    std::map<std::wstring, Entry> entries_;  // by the path in upper case
    std::set<std::wstring> met_;
};

}  // namespace tessary
