#include "ui/form/clipboard.h"

#include <cstring>
#include <utility>

namespace tessary {
namespace {

constexpr int kOpenAttempts = 10;
constexpr DWORD kPauseMilliseconds = 10;

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

bool PutOnClipboard(HWND owner, std::span<ClipboardItem> items) {
    const ClipboardSession clipboard(owner);
    if (!clipboard || !EmptyClipboard()) return false;
    bool isFirst = true;
    for (ClipboardItem& item : items) {
        if (SetClipboardData(item.format, item.block.Get()) != nullptr) {
            (void)item.block.Release();
        } else if (isFirst) {
            return false;
        }
        isFirst = false;
    }
    return true;
}

bool CopyTextToClipboard(HWND owner, const std::wstring& text) {
    const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, bytes));
    if (!block) return false;
    void* const address = GlobalLock(block.Get());
    if (address == nullptr) return false;
    std::memcpy(address, text.c_str(), bytes);
    GlobalUnlock(block.Get());
    ClipboardItem item{CF_UNICODETEXT, std::move(block)};
    return PutOnClipboard(owner, {&item, 1});
}

}  // namespace tessary
