#include "ui/form/message_loop.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "app/base/quit.h"

namespace tessary {
namespace {

std::vector<MessageFilter*>& Filters() {
    static std::vector<MessageFilter*> filters;
    return filters;
}

}  // namespace

MessageFilter::MessageFilter(std::function<bool(MSG& message)> takes) : takes_(std::move(takes)) {
    Filters().push_back(this);
}

MessageFilter::~MessageFilter() {
    std::erase(Filters(), this);
}

bool MessageFilter::AnyTakes(MSG& message) {
    // Taking a message may end this filter and others, so the list is read anew each time.
    for (size_t next = Filters().size(); next > 0; next = std::min(next - 1, Filters().size())) {
        const std::function<bool(MSG&)> takes = Filters()[next - 1]->takes_;
        if (Trapped(false, [&] { return takes(message); })) return true;
    }
    return false;
}

namespace {

void Dispatch(MSG& message) {
    if (MessageFilter::AnyTakes(message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

}  // namespace

int RunMessageLoop() {
    MSG message{};
    do {
        while (GetMessageW(&message, nullptr, 0, 0) > 0) {
            Dispatch(message);
            RenewQuit();
        }
    } while (!IsQuitRequested());
    QuitIsDone();
    return static_cast<int>(message.wParam);
}

bool DoEvents() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            if (!IsQuitRequested()) continue;
            PostQuitMessage(static_cast<int>(message.wParam));
            return false;
        }
        Dispatch(message);
    }
    return true;
}

}  // namespace tessary
