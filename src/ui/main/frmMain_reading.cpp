// Keeping the main window alive while something is read: what the user is told, and how he stops
// it.
#include <algorithm>
#include <utility>

#include "plugin/modSusie.h"
#include "ui/form/activity.h"
#include "ui/main/frmMain.h"

namespace tessary {
namespace {

// How long a read may keep the window waiting for its messages.
constexpr DWORD kBreathMilliseconds = 20;

// How long a read goes on before the user is told about it.
constexpr DWORD kLongMilliseconds = 300;

constexpr wchar_t kFetching[] = L"クラウドから取得しています";
constexpr wchar_t kHowToStop[] = L"（Esc で中止）";

// -1 when nobody knows. Plug-ins count in units of their own, and not always as far as they have
// said.
int PercentOf(int done, int total) {
    if (total <= 0) return -1;
    return static_cast<int>(std::clamp<int64_t>(int64_t{done} * 100 / total, 0, 100));
}

// As " 45%".
std::wstring PercentText(int percent) {
    return percent < 0 ? std::wstring() : L' ' + std::to_wstring(percent) + L'%';
}

// What a user who wants something else leaves a plug-in, in milliseconds: one that does nothing,
// one that works and could tell how far it is, and any other.
constexpr DWORD kIdleStrong = 1000;
constexpr DWORD kIdleSome = 2000;
constexpr DWORD kSilence = 2000;
constexpr DWORD kAge = 5000;

// Whether it is given up for that. Who holds the key down wants to see what comes in between.
bool IsPassedBy(const WaitedCall& call, Urge urge) {
    switch (urge) {
        case Urge::kNone:
            return false;
        case Urge::kSome:
            return call.isOverdue || call.idle >= kIdleSome;
        case Urge::kStrong:
            return call.isOverdue || call.idle >= kIdleStrong || call.age >= kAge ||
                   (call.mayTell && call.silence >= kSilence);
    }
    return false;
}

}  // namespace

frmMain::Reading::Reading(frmMain& window, const wchar_t* what)
    : window_(window),
      escape_([this](const MSG& message) { return TakesEscape(message); }),
      calls_([&window](const WaitedCall& call) { return window.AwaitsCall(call); }) {
    ReadState& state = window_.reading_;
    window_.frames_.Hold();
    if (state.depth++ == 0) {
        state.what = what;
        state.start = GetTickCount();
        state.stopped = false;
    }
}

// What was asked for while the read let nothing be heard was meant for this read, and not for what
// comes behind it.
frmMain::Reading::~Reading() {
    ReadState& state = window_.reading_;
    if (state.depth == 1) window_.Breathe();
    if (--state.depth > 0) return;
    window_.silence_.Hide();
    state.taskbar.reset();
    const std::optional<std::wstring> covered = std::exchange(state.covered, {});
    if (covered) window_.SetPanelText(kNoticePanel, *covered);
    if (!window_.filesToOpen_.empty()) PostMessageW(window_.Handle(), kOpenFilesMessage, 0, 0);
}

// While the window is disabled the system passes no command keys on to it.
bool frmMain::Reading::TakesEscape(const MSG& message) const {
    const bool pressed = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (!pressed || message.wParam != VK_ESCAPE || IsWindowEnabled(window_.Handle())) return false;
    const HWND root = GetAncestor(message.hwnd, GA_ROOT);
    if (root != window_.Handle() && IsWindowEnabled(root)) return false;  // a dialog's
    window_.StopReading();
    return true;
}

void frmMain::StopReading() {
    if (reading_.depth == 0 || std::exchange(reading_.stopped, true)) return;
    reading_.stop = GetTickCount();
}

bool frmMain::TakesStop() const {
    return reading_.depth > 0 &&
           !(reading_.stopped && GetTickCount() - reading_.stop >= kLongMilliseconds);
}

bool frmMain::IsReadingLong() const {
    return reading_.depth > 0 && GetTickCount() - reading_.start >= kLongMilliseconds;
}

void frmMain::TellProgress(int done, int total) {
    TellReading(reading_.what, done, total);
}

void frmMain::TellFetching(int done, int total) {
    TellReading(kFetching, done, total);
}

void frmMain::TellReading(const wchar_t* what, int done, int total) {
    if (!IsReadingLong()) return;
    if (!reading_.covered) reading_.covered = statusInformation_.PanelText(kNoticePanel);
    const int percent = PercentOf(done, total);
    statusInformation_.SetPanelText(kNoticePanel, what + PercentText(percent) + kHowToStop);
    const bool isFirst = reading_.taskbar == nullptr;
    if (isFirst) reading_.taskbar = std::make_unique<TaskbarProgress>(Handle());
    if (std::exchange(reading_.percent, percent) == percent && !isFirst) return;
    reading_.taskbar->SetProgress(std::max(percent, 0), percent < 0 ? 0 : 100);
}

CallWish frmMain::AwaitsCall(const WaitedCall& call) {
    TellProgress(call.done, call.total);
    if (!Breathe()) return CallWish::kStops;
    const Urge urge = UrgeForElse();
    if (IsPassedBy(call, urge)) return CallWish::kStops;
    if (call.isOverdue) return AskAboutSilence(call);
    silence_.Hide();
    return CallWish::kGoesOn;
}

// A show has nobody who would answer, nor has a window behind a dialog.
CallWish frmMain::AskAboutSilence(const WaitedCall& call) {
    const bool isShow = controlBar_ != nullptr && controlBar_->IsPlaying();
    if (isShow || !IsWindowEnabled(Handle())) {
        silence_.Hide();
        return CallWish::kGoesOn;
    }
    restingPointer_.Wake();
    silence_.Ask(SusieCollection().NameOf(std::wstring(call.plugin)));
    const SilenceBar::Answer answer = silence_.TakeAnswer();
    if (answer == SilenceBar::Answer::kNone) return CallWish::kAsksUser;
    silence_.Hide();
    return answer == SilenceBar::Answer::kWait ? CallWish::kMoreTime : CallWish::kGivenUp;
}

Urge frmMain::UrgeForElse() const {
    if (!filesToOpen_.empty()) return Urge::kStrong;
    return controlBar_ == nullptr ? Urge::kNone : controlBar_->UrgeForElse();
}

bool frmMain::AwaitsFile() const {
    return filesToOpen_.empty() && (controlBar_ == nullptr || controlBar_->AwaitsFile());
}

// A notice that comes while the panel has news of a read waits for its end.
void frmMain::SetPanelText(int panel, const std::wstring& text) {
    if (panel == kNoticePanel && reading_.covered) {
        reading_.covered = text;
    } else if (panel == kNoticePanel && text.empty()) {
        statusInformation_.RemovePanelsFrom(kNoticePanel);
    } else {
        statusInformation_.SetPanelText(panel, text);
    }
}

bool frmMain::Breathe() {
    if (GetTickCount() - lastBreath_ >= kBreathMilliseconds) {
        if (!DoEvents()) return false;
        lastBreath_ = GetTickCount();
    }
    return !CurrentActivity().quitRequested && !(reading_.depth > 0 && reading_.stopped);
}

}  // namespace tessary
