// Makes what is seen of a picture sharp, on a thread of its own.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "picture/view/sight_pixels.h"

namespace tessary {

// What the kernel makes of a part, in strips; null when it cannot, or `isWanted` answers false
// between two of them. Throws std::bad_alloc.
std::shared_ptr<const SharpPart> MakeSharpPart(const SightPixels& pixels, const SightPart& sight,
                                               const std::function<bool()>& isWanted);

class SharpSight {
  public:
    using Pixels = std::shared_ptr<const SightPixels>;

    // `ready` is called on that thread when there is something to take.
    explicit SharpSight(std::function<void()> ready) : ready_(std::move(ready)) {}
    SharpSight(const SharpSight&) = delete;
    SharpSight& operator=(const SharpSight&) = delete;
    ~SharpSight();

    // Has a part made; the wish before it is forgotten. What is being made of the same picture in
    // the same size and light is finished before: in motion a part of it may still be seen.
    void Ask(Pixels pixels, const SightPart& sight);
    // Nothing is to be made any more, nor taken.
    void Forget();

    // What was made last, once. Null: nothing new, or it could not be made.
    std::shared_ptr<const SharpPart> Take();

  private:
    struct Wish {
        Pixels pixels;
        SightPart sight;
    };

    void Run(const std::stop_token& ends);
    bool IsWanted(const Wish& wish);

    std::function<void()> ready_;
    std::mutex mutex_;
    std::condition_variable_any asked_;
    std::optional<Wish> wish_;
    Pixels making_;  // of whom something is being made and wanted
    SightPart makingSight_{};
    std::shared_ptr<const SharpPart> made_;
    std::jthread thread_;  // begins with the first wish; last, as it uses the others
};

}  // namespace tessary
