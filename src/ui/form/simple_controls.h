// The small controls: a text field, a push button, a check box, a label.
#pragma once

#include <functional>
#include <utility>

#include "ui/form/control.h"

namespace tessary {

// One line of text.
class TextBox final : public Control {
  public:
    // A field that shows its text for reading and copying.
    bool CreateReadOnly(HWND parent) {
        return CreateChild(parent, L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL | ES_READONLY,
                           WS_EX_CLIENTEDGE);
    }

    // The text has changed, by the user or by SetText.
    void OnChange(std::function<void()> handler) { change_ = std::move(handler); }

  private:
    void OnCommand(WORD notification, WORD /*id*/) override {
        if (notification == EN_CHANGE && change_) change_();
    }

    std::function<void()> change_;
};

// A push button, a check box or an option button.
class Button final : public Control {
  public:
    // A push button with its caption (`&` marks the mnemonic).
    bool Create(HWND parent, const wchar_t* caption, int id = 0) {
        return CreateChild(parent, L"BUTTON", WS_TABSTOP | BS_PUSHBUTTON, 0, id, caption);
    }

    void OnClick(std::function<void()> handler) { click_ = std::move(handler); }

    // Of a check box or option button.
    bool IsChecked() const { return Send(BM_GETCHECK) == BST_CHECKED; }
    void SetChecked(bool checked) { Send(BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED); }

  private:
    void OnCommand(WORD notification, WORD /*id*/) override {
        if (notification == BN_CLICKED && click_) click_();
    }

    std::function<void()> click_;
};

// A text that is only read. Where it has the focus, so that no button has it, arrow keys lead to
// none either.
class Label final : public Control {
  public:
    bool Create(HWND parent, const wchar_t* text, int id = 0) {
        return CreateChild(parent, L"STATIC", SS_LEFT, 0, id, text);
    }

  private:
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_GETDLGCODE) return DLGC_STATIC | DLGC_WANTARROWS;
        return Control::OnOwnMessage(message, wParam, lParam);
    }
};

}  // namespace tessary
