#include "plugin/plugin_ends.h"

#include "plugin/plugin_log.h"

namespace tessary {

void CountEnd(const PluginEnd& end) {
    IncrementErrorCount(end.call.plugin, end.call.function);
    if (end.kind != EndKind::kCaught && end.call.WhileLoading()) NoteFatalLoad(end.call.plugin);
}

}  // namespace tessary
