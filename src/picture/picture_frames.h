// What there is in a file beside the picture that it opens with.
#pragma once

#include <cstdint>

namespace tessary {

enum class FrameKind : int32_t {
    kNone = 0,
    kAnimation = 1,
    kPages = 2,  // each a picture of its own, of its own size; the first is the one it opens with
};

// Of a file of one picture all of it is empty.
struct PictureFrames {
    FrameKind kind = FrameKind::kNone;
    uint32_t count = 0;   // at least 2
    uint32_t rounds = 0;  // how often an animation is played; 0: endlessly

    explicit operator bool() const { return kind != FrameKind::kNone; }
    bool operator==(const PictureFrames&) const = default;
};

// More are nobody's to look at.
inline constexpr uint32_t kMostFrames = 1u << 24;

// How long a frame may be told to be shown, in milliseconds: a day.
inline constexpr uint32_t kLongestFrame = 86'400'000;

// What a plug-in has told; empty when that makes no sense.
inline PictureFrames FramesOf(int32_t kind, uint32_t count, uint32_t rounds) {
    const auto known = static_cast<FrameKind>(kind);
    const bool isKnown = known == FrameKind::kAnimation || known == FrameKind::kPages;
    if (!isKnown || count < 2 || count > kMostFrames) return {};
    return {known, count, known == FrameKind::kAnimation ? rounds : 0};
}

}  // namespace tessary
