#include "ui/form/accelerators.h"

#include <utility>

#include "ui/form/window.h"

namespace tessary {

std::vector<ACCEL> KeysOfResource(int resource) {
    const HACCEL table = LoadAcceleratorsW(ProgramInstance(), MAKEINTRESOURCEW(resource));
    std::vector<ACCEL> keys(static_cast<size_t>(CopyAcceleratorTableW(table, nullptr, 0)));
    CopyAcceleratorTableW(table, keys.data(), static_cast<int>(keys.size()));
    return keys;
}

Accelerators::Accelerators(int resource, std::function<HWND()> target,
                           std::function<bool(const MSG& key)> applies)
    : Accelerators([table = LoadAcceleratorsW(ProgramInstance(),
                                              MAKEINTRESOURCEW(resource))] { return table; },
                   std::move(target), std::move(applies)) {}

Accelerators::Accelerators(std::function<HACCEL()> table, std::function<HWND()> target,
                           std::function<bool(const MSG& key)> applies)
    : table_(std::move(table)),
      target_(std::move(target)),
      applies_(std::move(applies)),
      filter_([this](MSG& message) {
          if (message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
          const HWND window = target_();
          return window != nullptr && applies_(message) &&
                 TranslateAcceleratorW(window, table_(), &message) != 0;
      }) {}

}  // namespace tessary
