// The pixels of what is seen of a picture: at once as they come, or as sharp as they can be made.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "helpers/dib/unpack_row.h"
#include "helpers/kernel/kernel_types.h"
#include "picture/picture.h"

namespace tessary {

// Rows of 32-bit pixels, the top one first: blue in the lowest byte, alpha in the highest one,
// which the others are multiplied by.
struct PixelRows {
    uint32_t* first = nullptr;
    size_t stride = 0;  // pixels from one row to the next

    uint32_t* Row(int y) const { return first + static_cast<size_t>(y) * stride; }
};

// A part of a picture that is shown in a size of its own.
struct SightPart {
    SIZE shown{};                                  // the whole picture's size on the screen
    RECT part{};                                   // in it
    kernel::Light light = kernel::Light::kStored;  // what it is mixed of where it is made sharp

    int Width() const { return part.right - part.left; }
    int Height() const { return part.bottom - part.top; }
};

// Whether parts of one picture, made sharp, fit together.
bool AreMadeAlike(const SightPart& one, const SightPart& other);

// Whether the nearest pixels are all that there is to see: at the picture's own size, and from
// twice that on, where pixels are to be seen as such.
bool IsExactAsItIs(SIZE picture, SIZE shown);

// Reads a picture for the screen. Serves several threads.
class SightPixels {
  public:
    // The picture must not be empty.
    explicit SightPixels(Picture picture);

    const Picture& Whole() const { return picture_; }
    // Whether something shows through.
    bool HasAlpha() const { return reader_.HasAlpha(); }

    // Takes the nearest pixel for each one on the screen. `rows` begin with the part's top left
    // pixel.
    void DrawNearest(const SightPart& sight, const PixelRows& rows) const;
    // The same with the average of four pixels: far quicker than the kernel, for what is seen for
    // a moment only.
    void DrawAveraged(const SightPart& sight, const PixelRows& rows) const;

  private:
    void CopyRows(const RECT& part, const PixelRows& rows) const;

    Picture picture_;
    dib::RowReader reader_;
};

// Lays pixels with alpha over squares of two colours (blue in the lowest byte), `side` pixels wide;
// `origin` is the place in the rows that the squares begin at.
void LayOver(const PixelRows& rows, SIZE size, POINT origin, int side, const uint32_t (&colors)[2]);

// A part of a picture as it is shown.
class SharpPart {
  public:
    // Room for it, unfilled; throws std::bad_alloc.
    explicit SharpPart(const SightPart& sight);
    // Whether it is not as sharp as it can be.
    bool IsDraft() const { return isDraft_; }
    // The pixels of `made`, which has the part's size.
    static std::shared_ptr<const SharpPart> Of(const SightPart& sight, const Picture& made);

    const SightPart& Sight() const { return sight_; }
    PixelRows Rows() { return {pixels_.get(), static_cast<size_t>(sight_.Width())}; }
    const uint32_t* Row(int y) const {
        return pixels_.get() + static_cast<size_t>(y) * static_cast<size_t>(sight_.Width());
    }

  private:
    friend class Drafts;

    SightPart sight_;
    bool isDraft_ = false;
    std::unique_ptr<uint32_t[]> pixels_;
};

// Parts by SightPixels::DrawAveraged, in memory that is used again as soon as nobody else has it:
// the first touch of fresh memory takes longer than the drawing. As many as are needed at a time.
class Drafts {
  public:
    // Throws std::bad_alloc.
    std::shared_ptr<const SharpPart> Of(const SightPart& sight, const SightPixels& pixels);
    void Forget() { parts_ = {}; }

  private:
    std::vector<std::shared_ptr<SharpPart>> parts_;
};

}  // namespace tessary
