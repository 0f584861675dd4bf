// Plug-ins that a further thread has for itself.
#pragma once

#include <vector>

#include "plugin/CollectionSusie.h"
#include "plugin/host_state.h"

namespace tessary {

// What such a thread has to know of the program's.
struct KnownPlugins {
    std::vector<KnownPlugin> plugins{};  // in the order in which they are tried
    bool tryAll = true;                  // CollectionSusie::SetTryAll

    bool operator==(const KnownPlugins&) const = default;
};

// Of the program's collection, as it is now.
KnownPlugins KnownOf(const CollectionSusie& collection);

// For its own life SusieCollection() is on this thread a collection of its own, of the same
// plug-ins, with connections of its own. They are asked nothing before they are needed.
class OwnPlugins {
  public:
    OwnPlugins(PluginConnector connector, const KnownPlugins& known);
    OwnPlugins(const OwnPlugins&) = delete;
    OwnPlugins& operator=(const OwnPlugins&) = delete;
    ~OwnPlugins() = default;

  private:
    PluginCaller caller_;
    OwnCaller scope_;
    CollectionSusie collection_;
};

}  // namespace tessary
