#include "plugin/host_state.h"

#include <memory>

namespace tessary {

HostState& Host() {
    static HostState* const host = std::make_unique<HostState>().release();
    return *host;
}

}  // namespace tessary
