// Which calls of a plug-in have crashed, by what they were to read.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "plugin/susie_source.h"

namespace tessary {

// The same call on the same content would crash again, do more harm and be counted once more. A
// file that has changed since is another content, and so is every block with other bytes.
class CrashedCalls {
  public:
    // `function` tells the plug-in's functions apart. A file that is not there is not noted.
    void Note(std::wstring_view function, const SusieSource& source);
    bool Hold(std::wstring_view function, const SusieSource& source) const;
    void Clear() { calls_.clear(); }

  private:
    std::set<std::wstring> calls_;  // the function and all that tells its content from another
};

}  // namespace tessary
