#include "ui/control/player.h"

#include "app/settings/modValue.h"

namespace tessary {
namespace {

constexpr UINT kTickMilliseconds = 10;

// How long fast motion may keep the message loop waiting.
constexpr int32_t kBurstMilliseconds = 200;

// Signed, so that the tick count may wrap around between the two.
int32_t Elapsed(DWORD since, DWORD now) {
    return static_cast<int32_t>(now - since);
}

}  // namespace

void Player::Start(BarButton motion) {
    playMode_ = motion;
    isPaused_ = false;
    // After weeks without a step the time since the last one would seem to lie ahead.
    if (Elapsed(lastStep_, GetTickCount()) < 0) {
        lastStep_ = GetTickCount() - static_cast<DWORD>(INT16_MAX) - 1;
    }
    timer1_.Start(kTickMilliseconds);
    KeepScreenOn(steps_.isSeen());
}

void Player::HaltTimer() {
    isPaused_ = false;
    timer1_.Stop();
    KeepScreenOn(false);
}

void Player::TogglePause() {
    if (isPaused_) {
        Start(playMode_);
        RestartPause();
    } else if (IsPlaying()) {
        HaltTimer();
        isPaused_ = true;
    }
}

void Player::Stop() {
    HaltTimer();
    playMode_ = BarButton::kStop;
}

void Player::KeepScreenOn(bool on) {
    if (on == awake_.has_value()) return;
    if (on) {
        awake_.emplace(AwakeNeed::kScreen, L"スライドショーを表示しています");
    } else {
        awake_.reset();
    }
}

void Player::Timer1_Timer(DWORD now) {
    KeepScreenOn(steps_.isSeen());
    if (!steps_.mayStep()) return;
    switch (playMode_) {
        case BarButton::kRewind:
            return StepFast(steps_.back);
        case BarButton::kReversePlay:
            return StepTimed(steps_.back, now);
        case BarButton::kPlay:
            return StepTimed(steps_.forward, now);
        case BarButton::kFastForward:
            return StepFast(steps_.forward);
        default:
            return;
    }
}

// Loading sets the pace: small pictures follow each other without waiting for the next tick.
void Player::StepFast(const std::function<bool()>& step) const {
    const DWORD start = GetTickCount();
    const BarButton mode = playMode_;
    bool moved = true;
    steps_.inBurst([&] {
        while (moved && playMode_ == mode && steps_.mayStep() &&
               Elapsed(start, GetTickCount()) < kBurstMilliseconds) {
            moved = step();
        }
    });
    if (!moved) steps_.atEnd();
}

void Player::StepTimed(const std::function<bool()>& step, DWORD now) {
    if (Elapsed(lastStep_, now) <= Values().general.slideShowTime) return;
    const bool moved = step();
    if (!moved) steps_.atEnd();
    RestartPause();
}

// The pause counts from the end of loading.
void Player::RestartPause() {
    lastStep_ = GetTickCount();
}

}  // namespace tessary
