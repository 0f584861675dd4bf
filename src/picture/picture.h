// A decoded picture, wherever its bytes lie.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "helpers/dib/dib_view.h"
#include "helpers/files/file_dates.h"
#include "picture/modMemory.h"

namespace tessary {

struct PictureOrigin;

// Owns the two parts of a picture: the info block (header, masks or colour table) and the bits
// block (pixel rows). Both stay where they are, readable, until its end.
class PictureMemory {
  public:
    PictureMemory() = default;
    PictureMemory(const PictureMemory&) = delete;
    PictureMemory& operator=(const PictureMemory&) = delete;
    virtual ~PictureMemory() = default;

    virtual std::span<const uint8_t> Info() const = 0;
    virtual std::span<const uint8_t> Bits() const = 0;

    // Whether both are still where they were. Somebody else may have freed what is not ours alone.
    virtual bool IsThere() const { return true; }

    // Gives the memory away when it is a pair, and owns nothing afterwards; else answers an empty
    // pair.
    virtual PicturePair GivePair() { return {}; }
};

// No picture, or one in the plain form (helpers/dib/dib_view.h). The form is looked at once, when
// the object is made: whoever has a Picture that is not empty may rely on it.
class Picture {
  public:
    Picture() = default;
    // Empty when what lies in the memory is not plain.
    explicit Picture(std::unique_ptr<PictureMemory> memory);
    Picture(Picture&&) = default;
    Picture& operator=(Picture&&) = default;
    ~Picture() = default;

    // The way in for pairs of local-memory blocks, as plug-ins and the picture kernel hand them
    // out; takes both over. A pair in the plain form stays in its very blocks; one that can be put
    // right (helpers/dib/check_dib.h) comes into new ones. The profile that its header leads to
    // (helpers/dib/embedded_profile.h) becomes that of the picture. Empty, with everything freed,
    // when a block is missing or the pair is no picture, and without memory.
    static Picture FromPair(PicturePair pair);

    // The way out: the caller owns both blocks, unlocked; this is empty then. A picture in memory
    // of another kind, or with another owner, is copied. An empty pair without memory, and for no
    // picture.
    PicturePair ReleasePair();

    // A new picture. `info` is its info block; `fill` writes the rows that its header announces, in
    // stored order, as std::span<uint8_t>, and answers false to have no picture. Empty also when
    // the header is not plain, and without memory.
    template <typename Fill>
    static Picture Make(std::span<const uint8_t> info, Fill fill) {
        std::span<uint8_t> rows;
        Picture picture = Unfilled(info, rows);
        return picture && fill(rows) ? std::move(picture) : Picture();
    }

    // The same picture once more, in the same memory, which nobody changes.
    Picture Another() const { return *this; }

    // What the numbers of its pixels, or of its colour table, mean: an ICC profile of whatever
    // kind, as it came from outside; empty: sRGB. It goes with the picture, but for a pair that is
    // released.
    std::span<const uint8_t> Profile() const {
        return profile_ ? std::span<const uint8_t>(*profile_) : std::span<const uint8_t>();
    }
    // One that is larger than any (color::kLargestProfile) is not kept.
    void SetProfile(std::span<const uint8_t> icc);

    // Where it was read, which others know more of (picture/metadata); null: nobody knows. It goes
    // with the picture, but not into one that is made of it.
    const std::shared_ptr<const PictureOrigin>& Origin() const { return origin_; }
    void SetOrigin(std::shared_ptr<const PictureOrigin> origin) { origin_ = std::move(origin); }

    // EXIF data for the file that it is saved in; empty: none.
    std::span<const uint8_t> Exif() const {
        return exif_ ? std::span<const uint8_t>(*exif_) : std::span<const uint8_t>();
    }
    void SetExif(std::vector<uint8_t> exif) {
        exif_ = std::make_shared<const std::vector<uint8_t>>(std::move(exif));
    }

    // The dates for that file; zeros: it gets the present time.
    const files::FileDates& Dates() const { return dates_; }
    void SetDates(const files::FileDates& dates) { dates_ = dates; }

    // Has it take the same along as another picture, of which it was made.
    void TakeAlongAsOf(const Picture& other) {
        exif_ = other.exif_;
        dates_ = other.dates_;
    }

    explicit operator bool() const { return memory_ != nullptr; }

    // False when the memory was freed by somebody else, as a plug-in may do with blocks that it has
    // handed out: nothing of the picture may be read any more. Whoever has kept a picture while
    // plug-ins were called asks before he uses it. True for no picture.
    bool IsThere() const { return memory_ == nullptr || memory_->IsThere(); }

    // The rest is for a picture that is not empty.

    const dib::DibView& View() const { return *view_; }
    const dib::BitmapInfoHeader& Header() const { return view_->Header(); }
    int32_t Width() const { return view_->Width(); }
    int32_t Height() const { return view_->Height(); }
    bool HasAlpha() const { return view_->Format() == dib::PixelFormat::kBgra32; }

    // The two blocks, which may be longer than the header asks for.
    std::span<const uint8_t> Info() const { return memory_->Info(); }
    std::span<const uint8_t> Bits() const { return memory_->Bits(); }

  private:
    Picture(const Picture&) = default;
    static Picture Unfilled(std::span<const uint8_t> info, std::span<uint8_t>& rows);

    std::shared_ptr<PictureMemory> memory_;
    std::optional<dib::DibView> view_;
    std::shared_ptr<const std::vector<uint8_t>> profile_;
    std::shared_ptr<const PictureOrigin> origin_;
    std::shared_ptr<const std::vector<uint8_t>> exif_;
    files::FileDates dates_;
};

}  // namespace tessary
