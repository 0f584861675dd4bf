#include "app/base/message_box.h"

#include <windows.h>

#include <utility>

#include "app/base/call_user.h"
#include "app/base/task_modal.h"

namespace tessary {
namespace {

MessageBoxResponder& Responder() {
    static MessageBoxResponder responder;
    return responder;
}

}  // namespace

int ShowMessageBox(std::wstring_view text, unsigned style, std::wstring_view title) {
    const std::wstring message(text);
    const std::wstring caption(title);
    if (Responder()) return Responder()(message, style, caption);
    // The box itself disables its owner only, and MB_TASKMODAL the others only without an owner.
    const HWND owner = WindowForMessages();
    const UserCall call(owner);
    const TaskModal modal(owner);
    // An owner that is disabled could not become active again behind the box: another program's
    // window would.
    const bool wasDisabled = owner != nullptr && !IsWindowEnabled(owner);
    if (wasDisabled) EnableWindow(owner, TRUE);
    const int answer = MessageBoxW(owner, message.c_str(), caption.c_str(), style);
    if (wasDisabled) EnableWindow(owner, FALSE);
    return answer;
}

void SetMessageBoxResponder(MessageBoxResponder responder) {
    Responder() = std::move(responder);
}

}  // namespace tessary
