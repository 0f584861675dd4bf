// The question what is to become of a plug-in that does not answer.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "ui/form/message_loop.h"
#include "ui/form/metrics.h"
#include "ui/form/simple_controls.h"

namespace tessary {

// A strip along the lower edge of a window, with two buttons. It takes the keyboard from nobody:
// it is answered by the mouse, by Alt with a letter, and, once Tab has led there, by its buttons.
class SilenceBar {
  public:
    enum class Answer { kNone, kWait, kGiveUp };

    // The strip is out of sight at first; its controls belong to the window. `changed` is told when
    // it has come or gone: the window is to be laid out anew. `leave` is asked to take the keyboard
    // further, where Tab (or Shift+Tab: `back`) leads out of it.
    void Create(HWND window, std::function<void()> changed, std::function<void(bool back)> leave);
    void ChangeMetrics();

    // Asks about the plug-in of that name. What was answered about an earlier one is forgotten.
    void Ask(const std::wstring& plugin);
    void Hide();
    bool IsAsking() const { return isAsking_; }

    void Say(Answer answer);
    // Each is given out once.
    Answer TakeAnswer();

    // The height that it takes, in pixels; 0 while nothing is asked.
    int Height() const;
    // Puts it into this rectangle of its window.
    void Layout(const RECT& place);

    // Gives the keyboard to the button behind (or before) the one that has it, to the first one
    // where none has it; false when there is no further one, or nothing is asked.
    bool MoveFocus(bool back) const;
    bool HasFocus() const { return wait_.HasFocus() || giveUp_.HasFocus(); }
    bool Holds(HWND control) const;

  private:
    bool TakesMessage(const MSG& message);
    bool OnButtonKey(int keyCode, int shift, Answer answer);

    std::function<void()> changed_;
    std::function<void(bool)> leave_;
    HWND window_ = nullptr;
    UniqueFont font_;
    Label text_;
    Button wait_;
    Button giveUp_;
    bool isAsking_ = false;
    Answer answer_ = Answer::kNone;
    MessageFilter keys_{[this](const MSG& message) { return TakesMessage(message); }};
};

}  // namespace tessary
