// The message loop of the one user-interface thread.
#pragma once

#include <windows.h>

#include <functional>

namespace tessary {

// Sees every message before it is dispatched, as long as this object lives: accelerators
// (TranslateAccelerator) and modeless dialogs (IsDialogMessage) take theirs here. The latest filter
// is asked first.
class MessageFilter {
  public:
    // `takes` answers true for a message that it has dealt with.
    explicit MessageFilter(std::function<bool(MSG& message)> takes);
    MessageFilter(const MessageFilter&) = delete;
    MessageFilter& operator=(const MessageFilter&) = delete;
    ~MessageFilter();

    // Offers a message to all filters; true when one has taken it.
    static bool AnyTakes(MSG& message);

  private:
    std::function<bool(MSG&)> takes_;
};

// Runs until RequestQuit (app/base/quit.h), whose status is the result. WM_QUIT of anybody else, a
// plug-in's window for instance, ends nothing.
int RunMessageLoop();

// Handles the messages that wait now, so that windows stay alive during a long operation. False
// when the program is about to end: the request to quit stays in the queue for the outer loop.
bool DoEvents();

}  // namespace tessary
