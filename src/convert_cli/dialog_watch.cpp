#include "convert_cli/dialog_watch.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "host/hosted_call.h"

namespace tessary {
namespace {

constexpr auto kBetweenLooks = std::chrono::milliseconds(300);
// Long enough that what comes up by itself may go by itself.
constexpr ULONGLONG kDialogPatience = 1000;  // milliseconds
constexpr ULONGLONG kWindowPatience = 30000;
constexpr UINT kAnswerPatience = 500;
constexpr wchar_t kDialogClass[] = L"#32770";

std::wstring ClassOf(HWND window) {
    std::array<wchar_t, 64> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

// Of a window whose thread may hang.
std::wstring TextOf(HWND window) {
    std::array<wchar_t, 1024> text{};
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, kAnswerPatience, &length);
    std::wstring line(text.data());
    std::ranges::replace_if(
        line, [](wchar_t c) { return c < L' '; }, L' ');
    return std::wstring(TrimSpaces(line));
}

template <typename Take>
BOOL CALLBACK Pass(HWND window, LPARAM data) {
    (*reinterpret_cast<Take*>(data))(window);
    return TRUE;
}

// The windows in one, or with null all outermost ones.
template <typename Take>
void ForEachWindow(HWND parent, Take take) {
    const auto data = reinterpret_cast<LPARAM>(&take);
    if (parent == nullptr) {
        EnumWindows(Pass<Take>, data);
    } else {
        EnumChildWindows(parent, Pass<Take>, data);
    }
}

// With the plug-in that is being called.
std::map<HWND, std::wstring> VisibleWindowsOfHosts() {
    std::map<HWND, std::wstring> windows;
    ForEachWindow(nullptr, [&](HWND window) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        const std::optional<std::wstring> plugin = HostedCall::PluginIn(process);
        if (plugin && IsWindowVisible(window)) windows[window] = *plugin;
    });
    return windows;
}

// The button that changes least.
HWND CarefulButton(HWND dialog) {
    for (const int id : {IDCANCEL, IDNO, IDABORT, IDCLOSE, IDOK}) {
        if (const HWND button = GetDlgItem(dialog, id)) return button;
    }
    return nullptr;
}

std::wstring Description(HWND window) {
    std::wstring text = TextOf(window);
    ForEachWindow(window, [&](HWND part) {
        if (!EqualsIgnoreCase(ClassOf(part), L"Static")) return;
        const std::wstring more = TextOf(part);
        if (!more.empty()) text += (text.empty() ? L"" : L": ") + more;
    });
    return text;
}

}  // namespace

DialogWatch::DialogWatch(std::function<void(const std::wstring&)> tell)
    : tell_(std::move(tell)), thread_([this] { Watch(); }) {}

DialogWatch::~DialogWatch() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    ends_.notify_all();
    thread_.join();
}

void DialogWatch::Watch() {
    std::unique_lock lock(mutex_);
    while (!ends_.wait_for(lock, kBetweenLooks, [this] { return isEnding_; }))
        Trapped([this] { Look(); });
}

void DialogWatch::Look() {
    const ULONGLONG now = GetTickCount64();
    const std::map<HWND, std::wstring> windows = VisibleWindowsOfHosts();
    std::erase_if(seenSince_, [&](const auto& seen) { return !windows.contains(seen.first); });
    std::erase_if(told_, [&](HWND window) { return !seenSince_.contains(window); });
    for (const auto& [window, plugin] : windows) {
        const ULONGLONG age = now - seenSince_.try_emplace(window, now).first->second;
        const bool isDialog = ClassOf(window) == kDialogClass;
        if (age >= (isDialog ? kDialogPatience : kWindowPatience))
            Close(window, FileNameOf(plugin), isDialog);
    }
}

void DialogWatch::Close(HWND window, const std::wstring& plugin, bool isDialog) {
    if (told_.insert(window).second) {
        tell_((plugin.empty() ? L"プラグインが表示したウィンドウを閉じました: "
                              : L"プラグイン " + plugin + L" が表示したウィンドウを閉じました: ") +
              Description(window));
    }
    const HWND button = isDialog ? CarefulButton(window) : nullptr;
    if (button != nullptr) {
        PostMessageW(window, WM_COMMAND,
                     MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(button)), BN_CLICKED),
                     reinterpret_cast<LPARAM>(button));
    } else {
        PostMessageW(window, WM_CLOSE, 0, 0);
    }
}

}  // namespace tessary
