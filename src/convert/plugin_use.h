// Working with one plug-in of the collection for a while.
#pragma once

#include <string>

#include "plugin/clsSusie.h"

namespace tessary {

// The plug-in of that file name, if the collection has it; unbound at the end of this object's
// life.
class PluginUse {
  public:
    explicit PluginUse(const std::wstring& key);
    PluginUse(const PluginUse&) = delete;
    PluginUse& operator=(const PluginUse&) = delete;
    ~PluginUse();

    // Binds it to a file; false when there is no such plug-in or it refuses the file.
    bool Bind(const std::wstring& path) const;

    // Only where there is a plug-in.
    clsSusie* operator->() const { return plugin_; }
    clsSusie& operator*() const { return *plugin_; }

    // What the plug-in tells of its last error; empty when there is no plug-in.
    std::wstring ErrorString() const;

  private:
    clsSusie* plugin_;
};

}  // namespace tessary
