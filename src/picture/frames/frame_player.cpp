#include "picture/frames/frame_player.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "app/base/error.h"
#include "picture/frames/due_timer.h"
#include "picture/frames/frame_store.h"
#include "picture/view/sharp_sight.h"
#include "picture/view/turned_picture.h"

namespace tessary {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Without work for so long the plug-ins' files are given back.
constexpr milliseconds kRest{30'000};
constexpr milliseconds kFarewell{700};  // for what is under way

bool IsFrameOf(const Animation& animation, const Frame& frame) {
    return frame.picture && frame.picture.Width() == animation.size.cx &&
           frame.picture.Height() == animation.size.cy;
}

// What a frame may cost of the time that it is shown, to be made sharp in motion.
bool IsAffordable(Clock::duration cost, Clock::duration shown) {
    return cost * 10 < shown * 7;
}

}  // namespace

bool FrameLook::operator==(const FrameLook& other) const {
    return orientation == other.orientation && AreMadeAlike(seen, other.seen) &&
           EqualRect(&seen.part, &other.seen.part) != FALSE;
}

namespace {

// A frame that is being made ready, and how.
struct Job {
    std::shared_ptr<const Animation> animation{};
    Picture picture{};
    uint32_t index = 0;
    FrameLook look{};
    bool isSharp = false;
    bool isBrief = false;
    std::wstring damage{};
};

struct Made {
    PlayedFrame frame{};
    FrameLook look{};
};

// Without memory the picture is empty. `cost` receives how long it took to be made sharp.
PlayedFrame Make(const Job& job, Drafts& drafts, const std::function<bool()>& isWanted,
                 Clock::duration& cost) {
    PlayedFrame frame{.index = job.index, .damage = job.damage};
    Trapped([&] {
        Picture picture = TurnedPicture(job.picture, job.look.orientation);
        if (!picture) return;
        frame.pixels = std::make_shared<const SightPixels>(picture.Another());
        const SightPart& seen = job.look.seen;
        const SIZE size{picture.Width(), picture.Height()};
        frame.picture = std::move(picture);
        if (!job.isSharp || IsRectEmpty(&seen.part) || IsExactAsItIs(size, seen.shown)) return;
        const auto begin = Clock::now();
        frame.sharp = job.isBrief ? drafts.Of(seen, *frame.pixels)
                                  : MakeSharpPart(*frame.pixels, seen, isWanted);
        cost = Clock::now() - begin;
    });
    return frame;
}

}  // namespace

// What the three threads share. All but the timer and the drafts is for the owner of the mutex.
struct FramePlayer::State {
    State(std::function<void()> tell, size_t budget) : ready(std::move(tell)), store(budget) {}

    bool WantsFrames() const { return animation && !failed && (isPlaying || wished); }
    // What is seen first of all that is there.
    uint32_t Begins() const { return wished.value_or(clock.Index()); }
    // The one to get next; nothing while there is nothing to do.
    std::optional<uint32_t> Wanted() const {
        if (!WantsFrames()) return std::nullopt;
        if (!isPlaying) return store.Find(*wished) ? std::nullopt : wished;
        return store.Wanted(Begins());
    }
    void Wake() {
        work.notify_one();
        timer.Wake();
    }
    // Another thing is wanted than before.
    void Change() {
        timer.Wake();
        ++serial;
        wished.reset();
        failed.reset();
        due.reset();
    }
    // What was made ready for a picture that was not turned so is not to be shown.
    void ShowAnew() {
        const std::optional<uint32_t> index =
            wished || (!isPlaying && !due) ? wished : std::optional(clock.Index());
        Change();
        wished = index;
    }
    void Tell() const {
        if (ready) ready();
    }

    // --- The thread that shows ---
    // Whether something is to happen when the time of the frame that is seen is over.
    bool IsNextKnown() const {
        return clock.IsAtEnd() || failed == clock.Next() || store.Find(clock.Next()) != nullptr;
    }
    bool GoOn(std::unique_lock<std::mutex>& lock);
    bool IsMade(uint32_t index) const {
        return made && made->frame.index == index && made->look == look;
    }
    void Prepare(std::unique_lock<std::mutex>& lock, uint32_t index, bool isInMotion);
    void Show(std::unique_lock<std::mutex>& lock, bool isInMotion);

    std::mutex mutex;
    std::condition_variable work;  // for the thread that reads
    std::condition_variable rest;  // it has ended something
    DueTimer timer;                // of the thread that shows
    std::function<void()> ready;
    std::shared_ptr<const Animation> animation;  // null: there is none
    FrameStore store;
    FrameClock clock;
    FrameLook look;
    uint32_t serial = 0;  // of what is wanted
    uint32_t seen = 0;    // the frame that was taken last, or gone to
    bool isPlaying = false;
    bool isOver = false;
    std::optional<uint32_t> wished;  // to be seen at once
    std::optional<uint32_t> failed;  // it cannot be had
    std::optional<Made> made;        // the one that is seen next
    std::optional<PlayedFrame> due;
    Drafts drafts;           // of the thread that shows
    Clock::duration cost{};  // of making one sharp as it looks now; 0: nobody knows
    bool isReading = false;
    bool ends = false;
};

FramePlayer::FramePlayer(FrameReaderMaker maker, std::function<void()> ready, size_t budget)
    : maker_(std::move(maker)), state_(std::make_shared<State>(std::move(ready), budget)) {}

// --- The window's thread ---

void FramePlayer::SetAnimation(Animation animation) {
    const std::lock_guard lock(state_->mutex);
    state_->Change();
    state_->isPlaying = state_->isOver = false;
    state_->made.reset();
    state_->cost = {};
    state_->look = {};
    state_->seen = 0;
    state_->store.Begin(animation.count);
    state_->clock.Begin(animation.count, animation.rounds);
    state_->animation =
        animation.count == 0 ? nullptr : std::make_shared<const Animation>(std::move(animation));
}

// They own what they touch. At the program's end they end with it.
void FramePlayer::Begin() {
    Trapped([&] {
        if (!reader_) {
            reader_ = std::make_unique<Worker>(
                [state = state_, maker = maker_] { ReadFrames(state, maker); });
        }
        if (!shower_) {
            shower_ = std::make_unique<Worker>([state = state_] { ShowFrames(state); });
        }
    });
    state_->Wake();
}

void FramePlayer::Play() {
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->animation || state_->isPlaying) return;
        uint32_t from = state_->seen;
        if (from + 1 == state_->animation->count && state_->clock.IsLastRound()) {
            state_->clock.Restart();
            from = 0;
        }
        state_->Change();
        state_->wished = from;
        state_->isPlaying = true;
        state_->isOver = false;
    }
    Begin();
}

void FramePlayer::Pause() {
    const std::lock_guard lock(state_->mutex);
    state_->Change();
    state_->isPlaying = false;
}

void FramePlayer::Step(int frames) {
    uint32_t index = 0;
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->animation) return;
        const int64_t count = state_->animation->count;
        index = static_cast<uint32_t>(((int64_t{state_->seen} + frames) % count + count) % count);
    }
    GoTo(index);
}

void FramePlayer::GoTo(uint32_t index) {
    {
        const std::lock_guard lock(state_->mutex);
        if (!state_->animation || index >= state_->animation->count) return;
        state_->Change();
        state_->seen = index;
        state_->wished = index;
        state_->isPlaying = state_->isOver = false;
    }
    Begin();
}

void FramePlayer::SetLook(const FrameLook& look) {
    const std::lock_guard lock(state_->mutex);
    if (look == state_->look) return;
    if (look.orientation != state_->look.orientation) state_->ShowAnew();
    state_->look = look;
    state_->cost = {};
    state_->timer.Wake();
}

std::optional<PlayedFrame> FramePlayer::Take() {
    const std::lock_guard lock(state_->mutex);
    if (state_->due) state_->seen = state_->due->index;
    return std::exchange(state_->due, std::nullopt);
}

bool FramePlayer::IsPlaying() const {
    const std::lock_guard lock(state_->mutex);
    return state_->isPlaying;
}

bool FramePlayer::IsOver() const {
    const std::lock_guard lock(state_->mutex);
    return state_->isOver;
}

void FramePlayer::WaitForRest() {
    std::unique_lock lock(state_->mutex);
    state_->rest.wait_for(lock, kFarewell, [this] { return !state_->isReading; });
}

void FramePlayer::End() {
    SetAnimation({});
    {
        const std::lock_guard lock(state_->mutex);
        state_->ends = true;
        state_->ready = nullptr;
    }
    state_->Wake();
    for (const std::unique_ptr<Worker>* worker : {&shower_, &reader_}) {
        if (*worker) (*worker)->HasEndedWithin(static_cast<DWORD>(kFarewell.count()));
    }
}

// --- The thread that reads ---

void FramePlayer::ReadFrames(const std::shared_ptr<State>& state, const FrameReaderMaker& maker) {
    std::unique_ptr<FrameReader> reader;
    std::unique_lock lock(state->mutex);
    while (!state->ends) {
        const std::optional<uint32_t> wanted = state->Wanted();
        if (!wanted) {
            const auto there = [&] { return state->ends || state->Wanted(); };
            if (state->work.wait_for(lock, kRest, there)) continue;
            lock.unlock();
            reader.reset();
            lock.lock();
            continue;
        }
        const std::shared_ptr<const Animation> animation = state->animation;
        const auto isWanted = [&] {
            const std::lock_guard inner(state->mutex);
            return !state->ends && state->animation == animation && state->WantsFrames();
        };
        state->isReading = true;
        lock.unlock();
        std::optional<Frame> frame;
        for (int attempt = 0; attempt < 2 && !frame && isWanted(); ++attempt) {
            Trapped([&] {
                if (!reader) reader = maker();
                frame = reader->Read(*animation, *wanted, isWanted);
            });
            if (frame && !IsFrameOf(*animation, *frame)) frame.reset();
        }
        const bool wasWanted = isWanted();
        lock.lock();
        state->isReading = false;
        state->rest.notify_all();
        if (state->animation != animation) continue;
        if (frame) {
            state->store.Put(*wanted, *std::move(frame), state->Begins());
        } else if (wasWanted) {
            state->failed = *wanted;
        }
        state->timer.Wake();
    }
}

// --- The thread that shows ---

void FramePlayer::ShowFrames(const std::shared_ptr<State>& state) {
    std::unique_lock lock(state->mutex);
    while (!state->ends) {
        if (state->GoOn(lock)) continue;
        if (!state->isPlaying) state->drafts.Forget();
        state->work.notify_one();
        const FrameTime end = state->clock.End();
        // The time may be over by now: then it is not waited for.
        const bool isTimed = state->isPlaying && !state->wished && state->IsNextKnown();
        lock.unlock();
        isTimed ? state->timer.WaitUntil(end) : state->timer.Wait();
        lock.lock();
    }
}

// Does what there is to do now; false: there is nothing.
bool FramePlayer::State::GoOn(std::unique_lock<std::mutex>& lock) {
    if (wished) {
        if (const Frame* const frame = store.Find(*wished)) {
            clock.GoTo(*std::exchange(wished, std::nullopt), Clock::now(), frame->milliseconds);
            Show(lock, false);
            return true;
        }
        if (!failed) return false;
        wished.reset();
        isOver = std::exchange(isPlaying, false);
        Tell();
        return true;
    }
    if (!isPlaying) return false;
    const auto find = [this](uint32_t index) {
        const Frame* const frame = store.Find(index);
        return frame ? std::optional(frame->milliseconds) : std::nullopt;
    };
    if (clock.MoveOn(Clock::now(), find)) {
        Show(lock, true);
        return true;
    }
    const bool isAtEnd = clock.IsAtEnd() || failed == clock.Next();
    if (isAtEnd && Clock::now() >= clock.End()) {
        isPlaying = false;
        isOver = true;
        Tell();
        return true;
    }
    if (isAtEnd || IsMade(clock.Next()) || !store.Find(clock.Next())) return false;
    Prepare(lock, clock.Next(), true);
    return true;
}

// Makes a frame ready that is there, unless something else is wanted meanwhile.
void FramePlayer::State::Prepare(std::unique_lock<std::mutex>& lock, uint32_t index,
                                 bool isInMotion) {
    const Frame& frame = *store.Find(index);
    const bool isSharp = !isInMotion || IsAffordable(cost, ShownFor(frame.milliseconds));
    const bool isBrief = isInMotion && ShownFor(frame.milliseconds) < kBrief;
    const Job job{animation, frame.picture.Another(), index, look, isSharp, isBrief, frame.damage};
    const uint32_t begun = serial;
    Clock::duration took = cost;
    made.reset();
    lock.unlock();
    PlayedFrame result = Make(
        job, drafts,
        [&] {
            const std::lock_guard inner(mutex);
            return serial == begun && job.look == look;
        },
        took);
    lock.lock();
    if (serial != begun) return;
    if (result.picture) {
        if (job.look == look) cost = (3 * cost + took) / 4;  // once slow is not slow
        made = Made{std::move(result), job.look};
    } else {
        failed = index;
    }
}

void FramePlayer::State::Show(std::unique_lock<std::mutex>& lock, bool isInMotion) {
    const uint32_t begun = serial;
    const uint32_t index = clock.Index();
    if (!IsMade(index)) Prepare(lock, index, isInMotion);
    if (serial != begun || !made || made->frame.index != index) return;
    const bool isTold = due.has_value();
    due = std::move(made->frame);
    due->due = clock.Due();
    due->shown = clock.End() - clock.Due();
    made.reset();
    if (!isTold) Tell();
}

}  // namespace tessary
