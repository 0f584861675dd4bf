#include "ui/control/bar_texts.h"

#include <utility>

#include "ui/form/message_loop.h"

namespace tessary {
namespace {

// How long a load of a burst takes before it is told what is being loaded.
constexpr UINT kLongLoadMilliseconds = 200;

}  // namespace

BarTexts::BarTexts(const Form& bar, TextBox& info, frmMain& window, std::function<void()> late)
    : bar_(bar), info_(info), window_(window), late_(std::move(late)), longLoad_([this] {
          TellLate();
          late_();
      }) {}

void BarTexts::TellInfo(const std::wstring& text) {
    if (held_) {
        lateInfo_ = text;
    } else {
        info_.SetText(text);
    }
}

void BarTexts::TellShown(const std::wstring& text) {
    if (held_) {
        lateShown_ = text;
    } else {
        window_.SetPanelText(kShownFilePanel, text);
    }
}

void BarTexts::TellNotShown(const std::wstring& text) {
    TellInfo(text);
    TellShown(text);
}

std::wstring BarTexts::Info() const {
    return lateInfo_ ? *lateInfo_ : info_.Text();
}

void BarTexts::TellLoading(const std::wstring& text) {
    loading_ = text;
    TellNotShown(text);
    if (held_) {
        longLoad_.Start(kLongLoadMilliseconds);
    } else {
        PaintNow(bar_.Handle());
        PaintNow(window_.Handle());
    }
}

void BarTexts::TellNext(const std::wstring& next) {
    if (loading_.empty() || held_) return;
    TellNotShown(next.empty() ? loading_ : loading_ + L" （続けて " + next + L"）");
}

void BarTexts::Release() {
    held_ = false;
    TellLate();
}

void BarTexts::TellLate() {
    longLoad_.Stop();
    if (lateInfo_) info_.SetText(*std::exchange(lateInfo_, {}));
    if (lateShown_) window_.SetPanelText(kShownFilePanel, *std::exchange(lateShown_, {}));
}

}  // namespace tessary
