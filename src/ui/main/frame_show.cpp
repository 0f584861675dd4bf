#include "ui/main/frame_show.h"

#include <utility>

#include "app/settings/modValue.h"

namespace tessary {
namespace {

constexpr UINT kWatch = 50;         // milliseconds between two looks at whether it may play
constexpr ULONGLONG kMoment = 150;  // so long the picture stands first

}  // namespace

FrameShow::FrameShow(FrameReaderMaker maker, std::function<void()> nudge, View view)
    : view_(std::move(view)),
      canPlay_(maker != nullptr),
      player_(std::move(maker), std::move(nudge)) {}

void FrameShow::Set(Animation animation) {
    const bool wasThere = IsThere();
    if (!canPlay_) animation = {};
    if (!wasThere && animation.count == 0) return;
    count_ = animation.count;
    index_ = 0;
    look_.orientation = exif::kUpright;
    plays_ = IsThere() && Values().general.playAnimation != 0;
    held_ = GetTickCount64();
    player_.SetAnimation(std::move(animation));
    player_.SetLook(look_);
    IsThere() ? static_cast<void>(watch_.Start(kWatch)) : watch_.Stop();
    view_.changed();
}

void FrameShow::Turned(uint16_t orientation) {
    look_.orientation = orientation;
    player_.SetLook(look_);
}

void FrameShow::Seen(const SightPart& part) {
    look_.seen = part;
    if (IsThere()) player_.SetLook(look_);
}

void FrameShow::ShowDue() {
    if (!IsThere()) return;
    if (!view_.maySeeIt()) return Hold();
    std::optional<PlayedFrame> frame = player_.Take();
    if (frame) {
        index_ = frame->index;
        view_.show(*std::move(frame), player_.IsPlaying());
    }
    if (plays_ && player_.IsOver()) Stop();
    if (frame || !player_.IsPlaying()) view_.told();
}

void FrameShow::Hold() {
    if (!IsThere()) return;
    held_ = GetTickCount64();
    if (!player_.IsPlaying()) return;
    player_.Pause();
    view_.stoppedMoving();
}

void FrameShow::Rest() {
    Hold();
    player_.WaitForRest();
}

void FrameShow::End() {
    Set({});
    player_.End();
}

void FrameShow::Tick() {
    if (!view_.maySeeIt()) return Hold();
    ShowDue();
    if (plays_ && !player_.IsPlaying() && GetTickCount64() - held_ >= kMoment) player_.Play();
}

// What is seen stays.
void FrameShow::Stop() {
    plays_ = false;
    player_.Pause();
    view_.stoppedMoving();
    view_.changed();
}

void FrameShow::TogglePause() {
    if (plays_) return Stop();
    plays_ = true;
    player_.Play();
    view_.changed();
}

void FrameShow::Step(int frames) {
    if (plays_) Stop();
    player_.Step(frames);
}

void FrameShow::GoToFirst() {
    if (plays_) Stop();
    player_.GoTo(0);
}

// In motion the text keeps its width, more or less: two blanks are about as wide as a figure.
std::wstring FrameShow::Text() const {
    if (!IsThere()) return {};
    const std::wstring all = std::to_wstring(count_);
    std::wstring now = std::to_wstring(index_ + 1);
    now.insert(0, 2 * (all.size() - now.size()), L' ');
    const bool isPaused = !plays_ && !player_.IsOver();
    return now + L" / " + all + L" コマ" + (isPaused ? L"（一時停止）" : L"");
}

}  // namespace tessary
