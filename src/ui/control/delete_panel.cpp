#include "ui/control/delete_panel.h"

#include <algorithm>
#include <cwctype>

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMargin = 4;
constexpr int kButtonWidth = 116;
constexpr int kButtonHeight = 25;
constexpr int kCountHeight = 20;
constexpr int kLeastBeside = 330;  // so wide the list stands beside the buttons

constexpr wchar_t kMnemonicMark = L'&';

}  // namespace

void DeletePanel::Create(HWND parent) {
    deleteName_.Create(parent, L"削除リスト");
    deleteName_.SetVisible(false);
    listDelete_.CreateForPaths(parent);
    listDelete_.SetText(L"削除リスト");  // some systems know a list's name from there
    listDelete_.OnDoubleClick([this] { listDelete_DblClick(); });
    listDelete_.OnKeyDown([this](int keyCode, int) {
        if (keyCode == VK_RETURN) listDelete_DblClick();
        return keyCode == VK_RETURN;
    });
    lblMarks_.Create(parent, L"");
    cmdOK_.Create(parent, L"ディスクから削除(&D)");
    cmdOK_.OnClick([this] { actions_.deleteAll(); });
    cmdDelList_.Create(parent, L"リストから削除(&L)");
    cmdDelList_.OnClick([this] { actions_.dropAll(); });
    cmdCancel_.Create(parent, L"取り消し(&U)");
    cmdCancel_.OnClick([this] { actions_.putAllBack(); });
    for (int button = 0; button < kButtons; ++button) {
        buttons_[button]->OnKeyDown(
            [this, button](int keyCode, int) { return OnButtonKey(button, keyCode); });
    }
    SetEnabled(false);
}

void DeletePanel::SetFont(HFONT font) {
    listDelete_.SetFont(font);
    listDelete_.FontChanged();
    for (Button* const button : buttons_)
        button->SetFont(font);
    lblMarks_.SetFont(font);
}

void DeletePanel::Layout(const RECT& place, const Metrics& metrics) {
    const int margin = metrics.Scale(kMargin);
    const int buttonHeight = metrics.Scale(kButtonHeight);
    const int countHeight = metrics.Scale(kCountHeight);
    const int width = place.right - place.left;
    const bool isNarrow = width < metrics.Scale(kLeastBeside);
    const int buttonWidth = isNarrow ? width : metrics.Scale(kButtonWidth);
    const int left = place.right - buttonWidth;
    const int all = kButtons * (buttonHeight + margin) + countHeight;
    int top = isNarrow ? std::max(place.bottom - all, place.top) : place.top;
    listDelete_.SetBounds(
        place.left, place.top, isNarrow ? width : left - margin - place.left,
        isNarrow ? std::max<int>(top - margin - place.top, 0) : place.bottom - place.top);
    for (Button* const button : buttons_) {
        button->SetBounds(left, top, buttonWidth, buttonHeight);
        top += buttonHeight + margin;
    }
    lblMarks_.SetBounds(left, top, buttonWidth, countHeight);
}

void DeletePanel::SetEnabled(bool enabled) {
    for (Button* const button : buttons_)
        button->SetEnabled(enabled);
}

void DeletePanel::SetVisible(bool visible) {
    listDelete_.SetVisible(visible);
    for (Button* const button : buttons_)
        button->SetVisible(visible);
    lblMarks_.SetVisible(visible);
}

// --- Keys ---

bool DeletePanel::IsButtonFocused() const {
    return cmdOK_.HasFocus() || cmdDelList_.HasFocus() || cmdCancel_.HasFocus();
}

// Enter presses the button that has the focus, the arrows go to its neighbours.
bool DeletePanel::OnButtonKey(int button, int keyCode) {
    switch (keyCode) {
        case VK_RETURN:
            if (!actions_.keyRepeats()) SendMessageW(buttons_[button]->Handle(), BM_CLICK, 0, 0);
            return true;
        case VK_UP:
        case VK_LEFT:
            buttons_[(button + kButtons - 1) % kButtons]->SetFocus();
            return true;
        case VK_DOWN:
        case VK_RIGHT:
            buttons_[(button + 1) % kButtons]->SetFocus();
            return true;
        default:
            return false;
    }
}

bool DeletePanel::PressMnemonic(wchar_t letter) {
    const wchar_t mark[] = {kMnemonicMark, static_cast<wchar_t>(std::towupper(letter)), 0};
    for (Button* const button : buttons_) {
        if (!button->IsEnabled() || button->Text().find(mark) == std::wstring::npos) continue;
        button->SetFocus();
        SendMessageW(button->Handle(), BM_CLICK, 0, 0);
        return true;
    }
    return false;
}

void DeletePanel::listDelete_DblClick() {
    const int selected = listDelete_.Selected();
    if (selected >= 0) actions_.putBack(listDelete_.Item(selected));
}

// --- The marks ---

void DeletePanel::EntryAdded(const std::wstring& text) {
    listDelete_.Add(text);
    ShowCount();
}

void DeletePanel::EntryRemoved(int index) {
    listDelete_.Remove(index);
    ShowCount();
}

void DeletePanel::EntriesCleared() {
    listDelete_.Clear();
    ShowCount();
}

void DeletePanel::ShowCount() {
    lblMarks_.SetText(std::to_wstring(listDelete_.Count()) + L" 個のファイル");
}

}  // namespace tessary
