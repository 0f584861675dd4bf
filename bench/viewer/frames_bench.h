// What playing an animation costs, and how late its frames are.
#pragma once

#include <string>

namespace tessary::bench {

// Plays the animation of a file for ten seconds each in a view of its own size and in a smaller
// one, on the screen. Prints how late frames were painted and the share of a processor that this
// process and its hosts took. False when the file has no animation.
bool BenchFrames(const std::wstring& path);

}  // namespace tessary::bench
