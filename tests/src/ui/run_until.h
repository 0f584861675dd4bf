// Letting messages run until something has happened.
#pragma once

#include <windows.h>

#include <functional>

#include "ui/form/message_loop.h"

namespace tessary::test {

// False when the condition does not hold within the time.
inline bool RunUntil(const std::function<bool()>& condition, DWORD milliseconds = 10000) {
    const DWORD start = GetTickCount();
    while (!condition()) {
        if (GetTickCount() - start > milliseconds) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        DoEvents();
    }
    return true;
}

}  // namespace tessary::test
