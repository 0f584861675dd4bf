// The transport keys' memory and clock: which way the list is being played, and when the next step
// is due.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "app/base/stay_awake.h"
#include "ui/form/timer.h"
#include "ui/main/control_bar.h"

namespace tessary {

class Player {
  public:
    // What playing does to the lists. A step answers false when there is nowhere to go.
    struct Steps {
        std::function<bool()> back;
        std::function<bool()> forward;
        std::function<void()> atEnd;    // a timed step has failed: press stop
        std::function<bool()> mayStep;  // false while a picture is still being loaded
        std::function<bool()> isSeen;   // whether somebody may be watching: the screen stays on
        // Runs steps that follow each other at once.
        std::function<void(const std::function<void()>& steps)> inBurst;
    };

    explicit Player(Steps steps) : steps_(std::move(steps)) {}

    // Starts a motion (rewind, reverse play, play or fast-forward).
    void Start(BarButton motion);

    // Switches the timer off but keeps the play mode: the step buttons.
    void HaltTimer();

    // The stop button.
    void Stop();

    // A motion stands still, or goes on.
    void TogglePause();
    bool IsPaused() const { return isPaused_; }

    // Another picture than the next step's has come up.
    void RestartPause();

    // The button that last started or stopped a motion.
    BarButton PlayMode() const { return playMode_; }
    bool IsPlaying() const { return timer1_.IsRunning(); }
    // Whether pictures follow each other with time to look at them.
    bool IsShow() const { return IsPlaying() && !IsFast(); }
    // Whether a motion goes back through the entries.
    bool GoesBack() const {
        return IsPlaying() &&
               (playMode_ == BarButton::kRewind || playMode_ == BarButton::kReversePlay);
    }
    // Whether the entries fly by, with no pause for looking at them.
    bool IsFast() const {
        return IsPlaying() &&
               (playMode_ == BarButton::kRewind || playMode_ == BarButton::kFastForward);
    }

    // One tick at that tick count (milliseconds); the timer calls it.
    void Timer1_Timer(DWORD now);

  private:
    void KeepScreenOn(bool on);
    void StepFast(const std::function<bool()>& step) const;
    void StepTimed(const std::function<bool()>& step, DWORD now);

    Steps steps_;
    BarButton playMode_ = BarButton::kStop;
    bool isPaused_ = false;
    DWORD lastStep_ = 0;  // tick count after the last timed step
    std::optional<StayAwake> awake_;
    Timer timer1_{[this] { Timer1_Timer(GetTickCount()); }};
};

}  // namespace tessary
