// Plays an animation: frames are got and made ready beside the window's thread, and told when they
// are due.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "app/base/worker_thread.h"
#include "helpers/exif/orientation.h"
#include "picture/frames/animation.h"
#include "picture/frames/frame_clock.h"
#include "picture/view/sight_pixels.h"

namespace tessary {

// What is shown for less is not made as sharp as it can be.
inline constexpr std::chrono::milliseconds kBrief{200};

// How frames are to be seen.
struct FrameLook {
    uint16_t orientation = exif::kUpright;  // as EXIF counts it
    SightPart seen{};  // what is to be sharp, of the turned frame; empty: nothing

    bool operator==(const FrameLook& other) const;
};

// A frame for the view.
struct PlayedFrame {
    uint32_t index = 0;
    FrameTime due{};                              // since when it was to be seen
    std::chrono::steady_clock::duration shown{};  // for how long it is
    Picture picture{};                            // turned
    std::shared_ptr<const SightPixels> pixels{};  // of it
    std::shared_ptr<const SharpPart> sharp{};     // null: it was not made
    std::wstring damage{};                        // as of Frame
};

class FramePlayer {
  public:
    static constexpr size_t kBudget = size_t{64} << 20;

    // `ready` is called on a thread of the player's, in the middle of its work, when there is
    // something to take. `budget`: bytes of frames that are kept.
    FramePlayer(FrameReaderMaker maker, std::function<void()> ready, size_t budget = kBudget);
    FramePlayer(const FramePlayer&) = delete;
    FramePlayer& operator=(const FramePlayer&) = delete;
    ~FramePlayer() { End(); }

    // --- The window's thread ---

    // In place of the one before; it does not play. One without frames: there is none.
    void SetAnimation(Animation animation);
    // Plays on from the frame that is seen; after the last round, from the first one.
    void Play();
    // What is seen stays; no frame is got any more.
    void Pause();
    // Pauses, and shows another frame as soon as it is there: so many further on, or that one.
    void Step(int frames);
    void GoTo(uint32_t index);
    void SetLook(const FrameLook& look);

    // The frame to show now, once; nothing: the one that is seen is it.
    std::optional<PlayedFrame> Take();

    // Until it has come to its end, a frame that cannot be had, or a pause.
    bool IsPlaying() const;
    // Whether it has come to an end by itself.
    bool IsOver() const;

    // Until no frame is being got, but not long: the file is to be nobody's.
    void WaitForRest();
    // Nothing any more. The threads are not waited for long.
    void End();

  private:
    struct State;
    static void ReadFrames(const std::shared_ptr<State>& state, const FrameReaderMaker& maker);
    static void ShowFrames(const std::shared_ptr<State>& state);
    void Begin();

    FrameReaderMaker maker_;
    std::shared_ptr<State> state_;
    std::unique_ptr<Worker> reader_;  // both begin with the first frame that is wanted
    std::unique_ptr<Worker> shower_;
};

}  // namespace tessary
