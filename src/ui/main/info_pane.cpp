#include "ui/main/info_pane.h"

#include <algorithm>
#include <utility>

#include "picture/current_picture.h"
#include "picture/metadata/picture_metadata.h"
#include "plugin/modSusie.h"
#include "ui/form/activity.h"
#include "ui/form/picture_box.h"

namespace tessary {
namespace {

constexpr int kWidth = 320;  // pixels at 96 dpi
constexpr int kGap = 10;     // between labels and values

// Milliseconds: a held key shows several pictures in that time.
constexpr UINT kRest = 200;
constexpr UINT kBeat = 40;
constexpr ULONGLONG kLongStale = 300;
// Ticks of a rest, behind which the process that reads is ended.
constexpr int kLongRest = 150;

constexpr wchar_t kNoPicture[] = L"画像がありません。";
constexpr wchar_t kWidestLabel[] = L"読み込み時間";
constexpr wchar_t kAlphabet[] = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

void Append(std::wstring& text, const std::vector<InfoLine>& lines) {
    for (const InfoLine& line : lines)
        text += line.label + L'\t' + line.value + L"\r\n";
}

}  // namespace

void InfoText::Show(const std::wstring& text) {
    if (Text() == text) return;
    Send(WM_SETREDRAW, FALSE);
    SetText(text);
    Send(WM_SETREDRAW, TRUE);
    InvalidateRect(Handle(), nullptr, TRUE);
}

std::optional<LRESULT> InfoText::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    constexpr WPARAM kCtrlA = 1;
    if (message == WM_CHAR && wParam == kCtrlA) {
        Send(EM_SETSEL, 0, -1);
        return 0;
    }
    return Control::OnOwnMessage(message, wParam, lParam);
}

void InfoPane::Create(HWND window, std::function<void()> changed,
                      std::function<void(bool back)> leave) {
    window_ = window;
    changed_ = std::move(changed);
    leave_ = std::move(leave);
    text_.Create(window);
    text_.SetVisible(false);
    text_.OnKeyDown([this](int key, int shift) {
        if (key != VK_TAB) return false;
        leave_((shift & kShiftMask) != 0);
        return true;
    });
    ChangeMetrics();
}

void InfoPane::ChangeMetrics() {
    UniqueFont font = Metrics(window_).MessageFont();
    text_.SetFont(font.Get());
    font_ = std::move(font);
    const TextMeter meter(window_, font_.Get());
    constexpr int kUnits = 4;  // of a dialog in an average character
    const int average =
        std::max(meter.WidthOf(kAlphabet) / static_cast<int>(std::size(kAlphabet) - 1), 1);
    const int column = meter.WidthOf(kWidestLabel) + Metrics(window_).Scale(kGap);
    text_.SetTab(static_cast<DWORD>(MulDiv(column, kUnits, average)));
}

void InfoPane::SetOpen(bool isOpen) {
    if (isOpen == isOpen_) return;
    isOpen_ = isOpen;
    if (!isOpen && HasFocus()) leave_(true);
    text_.SetVisible(isOpen);
    changed_();
    if (isOpen) {
        isStale_ = true;
        Fill();
    }
    PictureChanged();
}

void InfoPane::PictureChanged() {
    const ULONGLONG now = GetTickCount64();
    if (!isStale_) staleSince_ = now;
    // A held key lets nothing be filled: no text is better than one of a picture that was.
    if (isOpen_ && isStale_ && now - staleSince_ > kLongStale) text_.Show({});
    isStale_ = true;
    rests_ = 0;
    if (isOpen_) timer_.Start(kRest);
}

void InfoPane::Stop() {
    timer_.Stop();
    asked_ = {};
    SharedMetadataHost()->Rest();
}

int InfoPane::Width() const {
    return isOpen_ ? Metrics(window_).Scale(kWidth) : 0;
}

void InfoPane::Layout(const RECT& place) {
    if (!isOpen_) return;
    text_.SetBounds(place.left, place.top, place.right - place.left, place.bottom - place.top);
}

bool InfoPane::TakeFocus() const {
    if (isOpen_) text_.SetFocus();
    return isOpen_;
}

bool InfoPane::TakesKey(WPARAM key) const {
    constexpr WPARAM kOwn[] = {VK_DELETE, VK_PRIOR, VK_NEXT, VK_HOME, VK_END,
                               VK_LEFT,   VK_RIGHT, VK_UP,   VK_DOWN};
    return HasFocus() && std::ranges::find(kOwn, key) != std::end(kOwn);
}

void InfoPane::Tick() {
    timer_.Start(kBeat);
    TakeAnswer();
    if (isOpen_ && isStale_ && !IsReadUnderWay()) Fill();
    if (asked_.worker || (isOpen_ && isStale_)) {
        rests_ = 0;
    } else if (++rests_ > kLongRest) {
        timer_.Stop();
        SharedMetadataHost()->Rest();
    }
}

void InfoPane::Fill() {
    const Picture& picture = CurrentPicture();
    if (!picture) {
        isStale_ = false;
        return text_.Show(kNoPicture);
    }
    const std::shared_ptr<const PictureOrigin>& origin = picture.Origin();
    const bool isTold = origin != nullptr && origin == toldOf_;
    const std::wstring plugin = origin == nullptr || origin->plugin.empty()
                                    ? std::wstring()
                                    : SusieCollection().NameOf(origin->plugin);
    std::wstring text;
    Append(text, PictureLines(picture, plugin, CurrentPictureDamage()));
    if (isTold && !told_.empty()) {
        text += L"\r\n";
        Append(text, told_);
    }
    // What is about to be told comes with the rest, unless that takes long.
    isStale_ = false;
    text_.Show(text);
    if (origin != nullptr && !isTold) Ask(origin);
}

// One at a time: a file that is not to be read holds up no other's but this.
void InfoPane::Ask(const std::shared_ptr<const PictureOrigin>& origin) {
    if (asked_.worker) {
        isStale_ = asked_.origin != origin;
        return;
    }
    const auto answer = std::make_shared<MetadataAnswer>();
    asked_ = {origin, answer,
              std::make_unique<Worker>([origin, answer] { *answer = MetadataOf(*origin); })};
}

void InfoPane::TakeAnswer() {
    if (!asked_.worker || !asked_.worker->HasEnded()) return;
    const Asked asked = std::exchange(asked_, {});
    toldOf_ = asked.origin;
    told_ = MetadataLines(asked.answer->fields);
    isStale_ = true;
}

}  // namespace tessary
