// The animation in the main window: when it plays, and what the user does to it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "picture/frames/frame_player.h"
#include "ui/form/timer.h"

namespace tessary {

// Begins a moment behind its picture, and stands still for as long as something else is under way
// or nobody can see it.
class FrameShow {
  public:
    struct View {
        std::function<bool()> maySeeIt;  // somebody may, and nothing else is under way
        std::function<void(PlayedFrame frame, bool isInMotion)> show;
        std::function<void()> stoppedMoving;  // what is seen stays for a while
        std::function<void()> told;           // Text() may be another one
        std::function<void()> changed;        // so may IsThere() and IsPaused()
    };

    // `nudge` is called on any thread, to have ShowDue called on this one. An empty `maker`:
    // nothing is played.
    FrameShow(FrameReaderMaker maker, std::function<void()> nudge, View view);

    // Of the picture that has just come into the view; one without frames: it is none.
    void Set(Animation animation);
    bool IsThere() const { return count_ > 0; }
    // The picture is turned so now; another part of it is seen.
    void Turned(uint16_t orientation);
    void Seen(const SightPart& part);

    // Shows what is due now.
    void ShowDue();
    // Stands still now, and for a moment behind this.
    void Hold();
    // Holds until the file is nobody's, but not long.
    void Rest();
    // Nothing any more.
    void End();

    // --- What the user does ---
    void TogglePause();
    // Whether it stands because he wants that, or has come to its end.
    bool IsPaused() const { return !plays_; }
    // Stands then.
    void Step(int frames);
    void GoToFirst();

    // As "3 / 24 コマ"; empty: there is none.
    std::wstring Text() const;

  private:
    void Tick();
    void Stop();

    View view_;
    bool canPlay_;
    FramePlayer player_;
    uint32_t count_ = 0;
    uint32_t index_ = 0;
    FrameLook look_;
    bool plays_ = false;  // unless it has to stand still
    ULONGLONG held_ = 0;  // since when it may play, in ticks
    Timer watch_{[this] { Tick(); }};
};

}  // namespace tessary
