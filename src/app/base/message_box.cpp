#include "app/base/message_box.h"

#include <windows.h>

#include <utility>

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
    return MessageBoxW(GetActiveWindow(), message.c_str(), caption.c_str(), style | MB_TASKMODAL);
}

void SetMessageBoxResponder(MessageBoxResponder responder) {
    Responder() = std::move(responder);
}

}  // namespace tessary
