#include "plugin/own_plugins.h"

#include <utility>

namespace tessary {

KnownPlugins KnownOf(const CollectionSusie& collection) {
    return {collection.Known(), collection.TriesAll()};
}

OwnPlugins::OwnPlugins(PluginConnector connector, const KnownPlugins& known)
    : caller_{.connector = std::move(connector)}, scope_(caller_) {
    collection_.SetTryAll(known.tryAll);
    collection_.AddKnown(known.plugins);
    caller_.plugins = &collection_;
}

}  // namespace tessary
