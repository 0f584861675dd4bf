#include "app/base/quit.h"

#include <windows.h>

#include <optional>

namespace tessary {
namespace {

std::optional<int>& Requested() {
    static std::optional<int> status;
    return status;
}

}  // namespace

void RequestQuit(int status) {
    Requested() = status;
    PostQuitMessage(status);
}

bool IsQuitRequested() {
    return Requested().has_value();
}

void QuitIsDone() {
    Requested().reset();
}

void DropForeignQuit() {
    // Without PM_QS_SENDMESSAGE: what other threads have sent must not be handled here.
    MSG quit{};
    PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE | PM_QS_POSTMESSAGE);
    if (Requested()) PostQuitMessage(*Requested());
}

}  // namespace tessary
