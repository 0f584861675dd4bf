#include "ui/form/status_bar.h"

#include <commctrl.h>

#include <algorithm>
#include <utility>

#include "ui/form/window.h"

namespace tessary {
namespace {

// Room beside a panel's text, in pixels at 96 dpi.
constexpr int kPanelPadding = 8;

}  // namespace

bool StatusBar::Create(HWND parent) {
    const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    handle_ = CreateWindowExW(0, STATUSCLASSNAMEW, L"",
                              WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP | SBARS_TOOLTIPS, 0, 0, 0, 0,
                              parent, nullptr, ProgramInstance(), nullptr);
    if (handle_ == nullptr) return false;
    ChangeMetrics();
    return true;
}

void StatusBar::SetPanelText(int panel, const std::wstring& text) {
    const size_t index = static_cast<size_t>(panel) - 1;
    const bool isNew = index >= texts_.size();
    if (isNew) texts_.resize(index + 1);
    // A tab would align the text differently.
    std::wstring shown = text;
    std::replace(shown.begin(), shown.end(), L'\t', L' ');
    if (!isNew && texts_[index] == shown) return;
    texts_[index] = std::move(shown);
    Measure(index);
    LayOutPanels();
    const auto shownText = reinterpret_cast<LPARAM>(texts_[index].c_str());
    SendMessageW(handle_, SB_SETTEXTW, index, shownText);
    SendMessageW(handle_, SB_SETTIPTEXTW, index, shownText);  // seen where the text is cut off
}

std::wstring StatusBar::PanelText(int panel) const {
    const size_t index = static_cast<size_t>(panel) - 1;
    if (index >= texts_.size()) return {};
    const LRESULT length = LOWORD(SendMessageW(handle_, SB_GETTEXTLENGTHW, index, 0));
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    SendMessageW(handle_, SB_GETTEXTW, index, reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(length));
    return text;
}

void StatusBar::RemovePanelsFrom(int panel) {
    const size_t count = static_cast<size_t>(panel) - 1;
    if (count >= texts_.size()) return;
    texts_.resize(count);
    widths_.resize(count);
    LayOutPanels();
}

void StatusBar::ChangeMetrics() {
    UniqueFont font = Metrics(handle_).StatusFont();
    SendMessageW(handle_, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), TRUE);
    font_ = std::move(font);
    widths_.clear();
    for (size_t i = 0; i < texts_.size(); ++i)
        Measure(i);
    LayOutPanels();
}

int StatusBar::Layout() {
    SendMessageW(handle_, WM_SIZE, 0, 0);  // the bar finds its place by itself
    LayOutPanels();
    InvalidateRect(handle_, nullptr, TRUE);  // the grip has moved
    RECT bar{};
    GetWindowRect(handle_, &bar);
    return bar.bottom - bar.top;
}

int StatusBar::TextWidth(const std::wstring& text) const {
    return TextMeter(handle_, font_.Get()).WidthOf(text);
}

// A panel keeps its width for a text that is a little narrower: a number that changes all the time
// moves nothing.
void StatusBar::Measure(size_t index) {
    const int padding = Metrics(handle_).Scale(kPanelPadding);
    widths_.resize(texts_.size(), 2 * padding);
    if (texts_[index].empty()) return;
    const int width = TextWidth(texts_[index]) + 2 * padding;
    if (width > widths_[index] || width < widths_[index] - padding) widths_[index] = width;
}

void StatusBar::LayOutPanels() {
    if (texts_.empty()) return;
    RECT bar{};
    GetClientRect(handle_, &bar);
    const int half = bar.right / 2;
    const int grip = GetSystemMetrics(SM_CXVSCROLL);
    int missing = widths_.back() + grip - static_cast<int>(bar.right);
    int widest = 0;
    for (size_t i = 0; i + 1 < widths_.size(); ++i) {
        const int width = std::min(widths_[i], half);
        missing += width;
        widest = std::max(widest, width);
    }
    const int most = std::clamp<int>(widest - std::max(missing, 0), bar.right / 4, half);
    std::vector<int> rightEdges;
    int left = 0;
    for (const int width : widths_) {
        left += std::min(width, most);
        rightEdges.push_back(left);
    }
    rightEdges.back() = -1;  // to the end of the bar
    if (rightEdges == rightEdges_) return;
    rightEdges_ = std::move(rightEdges);
    SendMessageW(handle_, SB_SETPARTS, rightEdges_.size(),
                 reinterpret_cast<LPARAM>(rightEdges_.data()));
}

}  // namespace tessary
