// What is played: the frames of a file, one after the other, and where they are got.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "picture/ahead/ahead_picture.h"
#include "picture/picture.h"
#include "plugin/own_plugins.h"

namespace tessary {

struct Animation {
    AheadEntry entry{};
    FileStamp stamp{};      // of the file as it was read
    std::wstring plugin{};  // full path of the one that reads it
    SIZE size{};            // of each frame, in pixels
    uint32_t count = 0;     // of the frames
    uint32_t rounds = 0;    // how often all are shown; 0: endlessly
    std::shared_ptr<const KnownPlugins> plugins{};
};

struct Frame {
    Picture picture{};
    uint32_t milliseconds = 0;  // for how long it is shown, as its file says
    std::wstring damage{};      // what is missing of it, for the user; empty: it is whole
};

// Gets frames, on one thread.
class FrameReader {
  public:
    FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;
    virtual ~FrameReader() = default;

    // The frame of that number, from 0. Nothing when it cannot be had, or is not wanted any more,
    // which is asked meanwhile.
    virtual std::optional<Frame> Read(const Animation& animation, uint32_t index,
                                      const std::function<bool()>& isWanted) = 0;
};

// Called on the thread that reads, where the reader ends as well.
using FrameReaderMaker = std::function<std::unique_ptr<FrameReader>()>;

}  // namespace tessary
