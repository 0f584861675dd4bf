#include "ui/form/clipboard.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr DWORD kFirstPauseMilliseconds = 5;
constexpr DWORD kLongestPauseMilliseconds = 250;

// How long the program may take whose content is replaced: it is told so, and hangs if it hangs.
constexpr DWORD kReplacePatienceMilliseconds = 500;

// The file name of the program that a window belongs to, else the window's title.
std::wstring ProgramOf(HWND window) {
    if (window == nullptr) return {};
    DWORD id = 0;
    GetWindowThreadProcessId(window, &id);
    const UniqueProcess process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id));
    wchar_t text[MAX_PATH * 4]{};
    DWORD length = MAX_PATH * 4;
    if (process && QueryFullProcessImageNameW(process.Get(), 0, text, &length)) {
        return FileNameOf(std::wstring(text, length));
    }
    // Of another process's window the system remembers the title: nobody is asked.
    if (id == GetCurrentProcessId()) return {};
    return {text, static_cast<size_t>(GetWindowTextW(window, text, MAX_PATH))};
}

ClipboardFailure LastFailure() {
    return WasMemoryShort() ? ClipboardFailure::kNoMemory : ClipboardFailure::kRefused;
}

ClipboardResult PutNow(HWND owner, std::vector<ClipboardItem>& items) {
    const ClipboardSession clipboard(owner);
    if (!clipboard) return {ClipboardFailure::kInUse, clipboard.Holder()};
    if (!EmptyClipboard()) return {LastFailure()};
    for (ClipboardItem& item : items) {
        if (SetClipboardData(item.format, item.block.Get()) != nullptr) {
            (void)item.block.Release();
        } else if (&item == items.data()) {
            return {LastFailure()};
        }
    }
    return {};
}

}  // namespace

ClipboardSession::ClipboardSession(HWND owner) {
    const DWORD start = GetTickCount();
    DWORD pause = kFirstPauseMilliseconds;
    while (!(open_ = OpenClipboard(owner) != FALSE)) {
        // Asked each time: whoever has had it in the end is the one to name.
        if (std::wstring holder = ProgramOf(GetOpenClipboardWindow()); !holder.empty()) {
            holder_ = std::move(holder);
        }
        if (GetTickCount() - start >= kClipboardPatienceMilliseconds) return;
        Sleep(pause);
        pause = std::min(pause * 2, kLongestPauseMilliseconds);
    }
    holder_.clear();
}

ClipboardSession::~ClipboardSession() {
    if (open_) CloseClipboard();
}

bool WasMemoryShort() {
    const DWORD error = GetLastError();
    return error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_OUTOFMEMORY ||
           error == ERROR_NOT_ENOUGH_QUOTA || error == ERROR_NO_SYSTEM_RESOURCES;
}

std::wstring ClipboardInUseText(const std::wstring& holder) {
    return (holder.empty() ? L"ほかのプログラム" : holder) +
           L" がクリップボードを使っています。少し待ってから、もう一度試してください。";
}

void TellCopyFailure(const ClipboardResult& result) {
    std::wstring text = L"クリップボードにデータをコピーできません";
    if (result.failure == ClipboardFailure::kInUse) {
        text += L"\r\n" + ClipboardInUseText(result.holder);
    } else if (result.failure == ClipboardFailure::kNoMemory) {
        text += L"\r\nデータが大きすぎて、メモリが足りません。";
    }
    ShowMessageBox(text, MB_ICONEXCLAMATION);
}

ClipboardResult PutOnClipboard(HWND owner, std::vector<ClipboardItem> items) {
    struct Job {
        std::vector<ClipboardItem> items;
        ClipboardResult result{ClipboardFailure::kRefused};
    };
    const auto job = std::make_shared<Job>();
    job->items = std::move(items);
    return Trapped(ClipboardResult{ClipboardFailure::kNoMemory}, [&]() -> ClipboardResult {
        const Worker worker([owner, job] { job->result = PutNow(owner, job->items); });
        if (!WaitPainting(worker.Handle(),
                          kClipboardPatienceMilliseconds + kReplacePatienceMilliseconds)) {
            return {ClipboardFailure::kInUse, ProgramOf(GetClipboardOwner())};
        }
        return std::move(job->result);
    });
}

void CopyTextToClipboard(HWND owner, const std::wstring& text) {
    const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, bytes));
    void* const address = block ? GlobalLock(block.Get()) : nullptr;
    if (address == nullptr) return TellCopyFailure({ClipboardFailure::kNoMemory});
    std::memcpy(address, text.c_str(), bytes);
    GlobalUnlock(block.Get());
    std::vector<ClipboardItem> items;
    items.push_back({CF_UNICODETEXT, std::move(block)});
    const ClipboardResult result = PutOnClipboard(owner, std::move(items));
    if (!result) TellCopyFailure(result);
}

}  // namespace tessary
