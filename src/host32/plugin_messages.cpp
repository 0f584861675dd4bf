#include "host32/plugin_messages.h"

#include <windows.h>

#include <string>

#include "host/host_notes.h"
#include "plugin/call_log.h"
#include "plugin/call_scope.h"
#include "plugin/plugin_state.h"
#include "plugin/thread_crash.h"

namespace tessary {
namespace {

// Whose code handles it; empty: nobody's.
std::wstring PluginOf(const MSG& message) {
    if (message.message == WM_TIMER && message.lParam != 0) {
        return PluginAt(reinterpret_cast<const void*>(message.lParam));
    }
    if (message.hwnd == nullptr) return {};
    // What is asked in the wrong character set is no address.
    const LONG_PTR procedure = IsWindowUnicode(message.hwnd)
                                   ? GetWindowLongPtrW(message.hwnd, GWLP_WNDPROC)
                                   : GetWindowLongPtrA(message.hwnd, GWLP_WNDPROC);
    std::wstring plugin = PluginAt(reinterpret_cast<const void*>(procedure));
    if (!plugin.empty()) return plugin;
    return PluginAt(reinterpret_cast<const void*>(GetWindowLongPtrW(message.hwnd, GWLP_HINSTANCE)));
}

}  // namespace

void HandleMessages(CallNotes& notes) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) continue;  // not a plug-in's to ask for
        TranslateMessage(&message);
        const std::wstring plugin = PluginCallUnderWay() ? std::wstring() : PluginOf(message);
        if (!plugin.empty()) notes.OnCall({kWindowCall, plugin, {}});
        DispatchMessageW(&message);
        if (!plugin.empty()) notes.OnReturn();
    }
}

}  // namespace tessary
