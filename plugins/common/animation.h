// An animation whose frames build on those before them, stepped through in any order.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "plugins/common/canvas.h"
#include "plugins/common/frame_reader.h"

namespace tessary::codec {

// What becomes of a frame's place before the next frame is drawn.
enum class Disposal : uint8_t { kNone, kClear, kPutBack };

class Animation : public FrameReader {
  public:
    Result Decode(dib::ByteSource& source, uint32_t index, PictureTarget& target,
                  Progress& progress, uint32_t& duration) final;

  protected:
    struct Frame {
        FramePlace place = {};
        Disposal disposal = Disposal::kNone;
        // It replaces each pixel of its place: nothing shines through.
        bool isSolid = false;
        uint32_t duration = 0;  // milliseconds
    };

    // Frames are drawn on a canvas of that size.
    Animation(uint32_t width, uint32_t height) : width_(width), height_(height) {}

    virtual Frame FrameAt(uint32_t index) const = 0;
    // Draws it on the canvas, which has what stays of the frames before. Damage is told, and no
    // failure where others can still be drawn.
    virtual Result Draw(dib::ByteSource& source, uint32_t index, Canvas& canvas,
                        Progress& progress) = 0;
    // Decodes a frame that is the whole picture straight into the target, as the canvas would hand
    // it out. False where that is not to be had without flaw: then it is drawn.
    virtual bool HandOutAlone(dib::ByteSource&, uint32_t, PictureTarget&) { return false; }

    uint32_t Width() const { return width_; }
    uint32_t Height() const { return height_; }

  private:
    Result Show(dib::ByteSource& source, uint32_t index, Progress& progress);
    Result Step(dib::ByteSource& source, uint32_t index, Progress& progress);
    bool IsWhole(const FramePlace& place) const;
    bool IsStart(uint32_t index) const;
    bool IsAlone(uint32_t index) const;
    void GoTo(uint32_t index);
    void Dispose();
    void Keep(uint32_t index);

    uint32_t width_;
    uint32_t height_;
    Canvas canvas_;
    std::optional<uint32_t> shown_;  // the frame that was drawn on it last
    std::vector<uint8_t> under_;     // what its place was before, if that is to be put back
    // Canvases ready for frames, to go back to: of every so many frames one.
    std::map<uint32_t, Canvas> kept_;
    uint32_t keptEvery_ = 8;
};

}  // namespace tessary::codec
