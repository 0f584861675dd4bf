#include "ui/form/clipboard.h"

#include <cstring>

#include "app/base/handles.h"

namespace tessary {
namespace {

constexpr int kOpenAttempts = 10;
constexpr DWORD kPauseMilliseconds = 10;

struct GlobalBlock : handle_traits::NullIsNone<HGLOBAL> {
    static void Close(HGLOBAL block) { GlobalFree(block); }
};

}  // namespace

ClipboardSession::ClipboardSession(HWND owner) {
    for (int attempt = 0; attempt < kOpenAttempts && !open_; ++attempt) {
        if (attempt > 0) Sleep(kPauseMilliseconds);
        open_ = OpenClipboard(owner) != FALSE;
    }
}

ClipboardSession::~ClipboardSession() {
    if (open_) CloseClipboard();
}

bool CopyTextToClipboard(HWND owner, const std::wstring& text) {
    const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    UniqueHandle<GlobalBlock> block(GlobalAlloc(GMEM_MOVEABLE, bytes));
    if (!block) return false;
    void* const address = GlobalLock(block.Get());
    if (address == nullptr) return false;
    std::memcpy(address, text.c_str(), bytes);
    GlobalUnlock(block.Get());

    const ClipboardSession clipboard(owner);
    if (!clipboard || !EmptyClipboard()) return false;
    if (SetClipboardData(CF_UNICODETEXT, block.Get()) == nullptr) return false;
    (void)block.Release();  // the clipboard's own from now on
    return true;
}

}  // namespace tessary
