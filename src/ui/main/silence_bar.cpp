#include "ui/main/silence_bar.h"

#include <algorithm>
#include <cwctype>
#include <utility>

#include "ui/form/picture_box.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMargin = 6;
constexpr int kButtonPadding = 14;
constexpr int kButtonHeight = 25;

constexpr wchar_t kWaitCaption[] = L"待つ(&W)";
constexpr wchar_t kWaitKey = L'W';
constexpr wchar_t kGiveUpCaption[] = L"中止(Esc)";

}  // namespace

void SilenceBar::Create(HWND window, std::function<void()> changed,
                        std::function<void(bool back)> leave) {
    window_ = window;
    changed_ = std::move(changed);
    leave_ = std::move(leave);
    text_.Create(window, L"");
    const LONG_PTR style = GetWindowLongPtrW(text_.Handle(), GWL_STYLE);
    SetWindowLongPtrW(text_.Handle(), GWL_STYLE,
                      style | SS_NOPREFIX | SS_ENDELLIPSIS | SS_CENTERIMAGE);
    wait_.Create(window, kWaitCaption);
    giveUp_.Create(window, kGiveUpCaption);
    for (const auto& [button, answer] :
         {std::pair{&wait_, Answer::kWait}, {&giveUp_, Answer::kGiveUp}}) {
        button->OnClick([this, answer] { Say(answer); });
        button->OnKeyDown(
            [this, answer](int key, int shift) { return OnButtonKey(key, shift, answer); });
    }
    for (Control* const control : std::initializer_list<Control*>{&text_, &wait_, &giveUp_})
        control->SetVisible(false);
    ChangeMetrics();
}

void SilenceBar::ChangeMetrics() {
    UniqueFont font = Metrics(window_).MessageFont();
    for (Control* const control : std::initializer_list<Control*>{&text_, &wait_, &giveUp_})
        control->SetFont(font.Get());
    font_ = std::move(font);
}

void SilenceBar::Ask(const std::wstring& plugin) {
    if (std::exchange(isAsking_, true)) return;
    answer_ = Answer::kNone;
    text_.SetText(L"プラグイン " + plugin + L" が応答しません。");
    for (Control* const control : std::initializer_list<Control*>{&text_, &wait_, &giveUp_})
        control->SetVisible(true);
    changed_();
    NotifyWinEvent(EVENT_SYSTEM_ALERT, text_.Handle(), OBJID_WINDOW, CHILDID_SELF);
}

void SilenceBar::Hide() {
    if (!std::exchange(isAsking_, false)) return;
    if (HasFocus()) ::SetFocus(window_);
    for (Control* const control : std::initializer_list<Control*>{&text_, &wait_, &giveUp_})
        control->SetVisible(false);
    changed_();
}

void SilenceBar::Say(Answer answer) {
    if (isAsking_) answer_ = answer;
}

SilenceBar::Answer SilenceBar::TakeAnswer() {
    return std::exchange(answer_, Answer::kNone);
}

int SilenceBar::Height() const {
    return isAsking_ ? Metrics(window_).Scale(kButtonHeight) + 2 * Metrics(window_).Scale(kMargin)
                     : 0;
}

void SilenceBar::Layout(const RECT& place) {
    if (!isAsking_) return;
    const Metrics metrics(window_);
    const int margin = metrics.Scale(kMargin);
    const int buttonHeight = metrics.Scale(kButtonHeight);
    const int top = place.top + margin;
    const TextMeter meter(window_, font_.Get());
    int right = place.right;
    for (Button* const button : {&giveUp_, &wait_}) {
        const int buttonWidth = meter.WidthOf(button->Text()) + 2 * metrics.Scale(kButtonPadding);
        right -= buttonWidth + margin;
        button->SetBounds(right, top, buttonWidth, buttonHeight);
    }
    text_.SetBounds(margin, top, std::max(right - 2 * margin, 0), buttonHeight);
    InvalidateRect(window_, nullptr, TRUE);
}

bool SilenceBar::MoveFocus(bool back) const {
    if (!isAsking_ || (back ? wait_ : giveUp_).HasFocus()) return false;
    (HasFocus() == back ? wait_ : giveUp_).SetFocus();
    return true;
}

bool SilenceBar::Holds(HWND control) const {
    return control != nullptr &&
           (control == text_.Handle() || control == wait_.Handle() || control == giveUp_.Handle());
}

// In the window itself and in those that it owns, as long as none of them is a dialog in front.
bool SilenceBar::TakesMessage(const MSG& message) {
    if (!isAsking_ || message.message != WM_SYSCHAR || !IsWindowEnabled(window_)) return false;
    if (GetAncestor(message.hwnd, GA_ROOTOWNER) != window_) return false;
    if (std::towupper(static_cast<wchar_t>(message.wParam)) != kWaitKey) return false;
    Say(Answer::kWait);
    return true;
}

bool SilenceBar::OnButtonKey(int keyCode, int shift, Answer answer) {
    switch (keyCode) {
        case VK_RETURN:
            Say(answer);
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            MoveFocus(keyCode == VK_LEFT);
            return true;
        case VK_TAB: {
            const bool back = (shift & kShiftMask) != 0;
            if (!MoveFocus(back)) leave_(back);
            return true;
        }
        default:
            return false;
    }
}

}  // namespace tessary
