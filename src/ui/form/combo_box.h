// A list of texts that opens below its field.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "ui/form/control.h"

namespace tessary {

// Indexes count from 0; -1 stands for no entry. Text() is what the field holds.
class ComboBox final : public Control {
  public:
    // The user has chosen an entry. The field may still hold the former text then: ask Selected().
    void OnSelect(std::function<void()> handler) { select_ = std::move(handler); }
    // The user has closed the list, with or without a choice.
    void OnCloseUp(std::function<void()> handler) { closeUp_ = std::move(handler); }

    int Count() const { return static_cast<int>(Send(CB_GETCOUNT)); }
    int Add(const std::wstring& text) {
        return static_cast<int>(Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
    }
    void Clear() { Send(CB_RESETCONTENT); }
    bool IsOpen() const { return Send(CB_GETDROPPEDSTATE) != 0; }

    int Selected() const { return static_cast<int>(Send(CB_GETCURSEL)); }
    // Moves the selection without telling anyone.
    void MarkSelected(int index) { Send(CB_SETCURSEL, static_cast<WPARAM>(index)); }

  private:
    void OnCommand(WORD notification, WORD /*id*/) override {
        if (notification == CBN_SELCHANGE && select_) select_();
        if (notification == CBN_CLOSEUP && closeUp_) closeUp_();
    }

    std::function<void()> select_;
    std::function<void()> closeUp_;
};

}  // namespace tessary
