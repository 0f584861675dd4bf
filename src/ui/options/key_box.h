// A field that takes a key where others take letters.
#pragma once

#include <functional>

#include "ui/form/control.h"
#include "ui/keys/key_stroke.h"

namespace tessary {

// Shows the key that was pressed last; Tab, Esc and what goes with Alt stay the dialog's. Its
// template is that of a field for text.
class KeyBox final : public Control {
  public:
    // None: a key of 0.
    const KeyStroke& Stroke() const { return stroke_; }
    void Clear();
    void OnPressed(std::function<void()> handler) { pressed_ = std::move(handler); }

  private:
    void OnAttached() override;
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    KeyStroke stroke_;
    std::function<void()> pressed_;
};

}  // namespace tessary
