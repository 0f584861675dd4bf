// Which operations of a plug-in have crashed, by what they were to read.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "plugin/plugin_connection.h"

namespace tessary {

// The same operation on the same content would crash again, do more harm and be counted once more.
// A file that has changed since is another content, and so is every block with other bytes.
class CrashedCalls {
  public:
    // `operation` tells the plug-in's operations apart. A file that is not there is not noted.
    void Note(std::wstring_view operation, const PluginSource& source);
    // Looks at the content only where something of that name or size has crashed.
    bool Hold(std::wstring_view operation, const PluginSource& source) const;
    void Clear() { calls_.clear(); }

  private:
    using Version = std::pair<uint64_t, uint64_t>;  // what tells two contents apart

    // By the operation and what is seen of the source without reading it.
    std::map<std::wstring, std::set<Version>> calls_;
};

}  // namespace tessary
