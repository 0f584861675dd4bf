// What the exported functions of every bundled plug-in have in common: nothing is thrown past
// them, and the host's callback hears how far they have come.
#pragma once

#include <new>
#include <stdexcept>

#include "helpers/susiectl/susie_interface.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"

namespace tessary::spi {

// The result code of `function`, which answers a codec::Result; one of our own where it throws.
template <class Function>
int Guarded(Function&& function) {
    try {
        return static_cast<int>(function());
    } catch (const std::bad_alloc&) {
        return static_cast<int>(codec::Result::kOutOfMemory);
    } catch (const std::length_error&) {  // more than a container can ever hold
        return static_cast<int>(codec::Result::kOutOfMemory);
    } catch (...) {
        return static_cast<int>(codec::Result::kInternalError);
    }
}

// Reports to the host, which may give no callback.
inline codec::Progress HostProgress(susie::ProgressCallback callback, LONG_PTR userData) {
    if (callback == nullptr) return {};
    return codec::Progress(
        [callback, userData](int done, int total) { return callback(done, total, userData) == 0; });
}

}  // namespace tessary::spi
