#include "ui/form/accelerators.h"

#include <utility>

#include "ui/form/window.h"

namespace tessary {

Accelerators::Accelerators(int resource, std::function<HWND()> target,
                           std::function<bool(const MSG& key)> applies)
    : table_(LoadAcceleratorsW(ProgramInstance(), MAKEINTRESOURCEW(resource))),
      target_(std::move(target)),
      applies_(std::move(applies)),
      filter_([this](MSG& message) {
          if (message.message < WM_KEYFIRST || message.message > WM_KEYLAST) return false;
          const HWND window = target_();
          return window != nullptr && applies_(message) &&
                 TranslateAcceleratorW(window, table_, &message) != 0;
      }) {}

}  // namespace tessary
