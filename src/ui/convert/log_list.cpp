#include "ui/convert/log_list.h"

#include <algorithm>

#include "ui/form/clipboard.h"
#include "ui/form/metrics.h"
#include "ui/form/picture_box.h"
#include "ui/form/redraw_hold.h"

namespace tessary {
namespace {

constexpr int kTextMargin = 8;  // beside the text, in pixels at 96 dpi

// In the size of the messages' font. Full-width characters are twice as wide as the others.
UniqueFont FixedWidthFont(HWND window) {
    LOGFONTW font{};
    GetObjectW(Metrics(window).MessageFont().Get(), sizeof(font), &font);
    font.lfWidth = 0;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = SHIFTJIS_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH | FF_MODERN;
    wcscpy_s(font.lfFaceName, L"ＭＳ ゴシック");
    return UniqueFont(CreateFontIndirectW(&font));
}

}  // namespace

void LogList::Attach(HWND dialog, int id) {
    list_.Attach(dialog, id);
    list_.OnKeyDown([this](int keyCode, int shift) {
        const bool copies = keyCode == L'C' && shift == kCtrlMask;
        if (copies) CopyAll();
        return copies;
    });
    Clear();
    ChangeMetrics();
}

void LogList::Add(const std::wstring& line) {
    lines_.push_back(line);
    ++added_;
}

void LogList::RemoveFirst() {
    if (added_ == lines_.size()) {
        --added_;  // it was never on the screen
    } else {
        ++removed_;
    }
    lines_.pop_front();
}

void LogList::Clear() {
    lines_.clear();
    removed_ = added_ = 0;
    textWidth_ = 0;
    list_.Clear();
    list_.SetTextWidth(0);
}

void LogList::Show() {
    if (removed_ == 0 && added_ == 0) return;
    const RedrawHold hold(list_);
    if (added_ == lines_.size()) {
        list_.Clear();
    } else {
        for (; removed_ > 0; --removed_)
            list_.Remove(0);
    }
    const size_t first = lines_.size() - added_;
    for (size_t index = first; index < lines_.size(); ++index)
        list_.Add(lines_[index]);
    textWidth_ = std::max(textWidth_, WidthOf(first));
    list_.SetTextWidth(textWidth_);
    list_.MarkSelected(list_.Count() - 1);
    removed_ = added_ = 0;
}

// Of the widest line from the index on.
int LogList::WidthOf(size_t first) const {
    const TextMeter texts(list_.Handle(), font_.Get());
    int width = 0;
    for (size_t index = first; index < lines_.size(); ++index)
        width = std::max(width, texts.WidthOf(lines_[index]));
    return width + Metrics(list_.Handle()).Scale(kTextMargin);
}

void LogList::ChangeMetrics() {
    UniqueFont font = FixedWidthFont(list_.Handle());
    list_.SetFont(font.Get());
    font_ = std::move(font);
    list_.FontChanged();
    textWidth_ = WidthOf(0);
    list_.SetTextWidth(textWidth_);
}

void LogList::CopyAll() const {
    std::wstring text;
    for (const std::wstring& line : lines_)
        text += line + L"\r\n";
    CopyTextToClipboard(list_.Handle(), text);
}

}  // namespace tessary
