// One frame of a picture file, opened with the Windows Imaging Component, and how its pixels are to
// be read.
#pragma once

#include <windows.h>

#include <wincodec.h>

#include <memory>
#include <optional>
#include <vector>

#include "helpers/color/color_transform.h"
#include "helpers/dib/bitmap_header.h"
#include "helpers/dib/byte_source.h"
#include "plugins/iftesswic/com.h"
#include "plugins/iftesswic/container.h"

namespace tessary::wic {

// The pixels of a frame in one of four shapes: indexes of 1, 2, 4 or 8 bits into `palette`, which
// is in sRGB and has transparency worked in already (16 bits: the high byte is the index); without
// a palette 24-bit BGR, 32-bit BGRA not premultiplied, or what `toSrgb` makes one of these of.
struct WicPixels {
    ComPtr<IWICBitmapSource> source;
    unsigned bitCount = 0;
    std::vector<dib::PaletteEntry> palette;
    std::shared_ptr<const color::Transform> toSrgb;  // where the colours are not in sRGB
    color::Layout layout = color::Layout::kBgr8;     // without a palette
};

class WicFrame {
  public:
    // The first frame. Throws ComFailure when no installed decoder takes the file. The stream's
    // source outlives the frame.
    WicFrame(Container container, const ComPtr<IStream>& stream);

    uint32_t Width() const { return width_; }    // pixels, as stored
    uint32_t Height() const { return height_; }  // pixels, as stored

    // 1 to 8, as in the TIFF tag.
    uint16_t Orientation() const { return orientation_; }

    // 0 when the file does not say.
    int32_t XPelsPerMeter() const { return xPelsPerMeter_; }
    int32_t YPelsPerMeter() const { return yPelsPerMeter_; }

    // Throws ComFailure when the format has no way to any of the shapes.
    WicPixels Pixels() const;

  private:
    void ReadOrientation();
    void ReadResolution();
    // What the file says of its colours; nothing where it says nothing usable.
    std::optional<color::Profile> Colors() const;
    WicPixels PixelsOf(const GUID& format, const std::optional<color::Profile>& profile) const;

    ComPtr<IWICImagingFactory> factory_;
    ComPtr<IWICBitmapDecoder> decoder_;
    ComPtr<IWICBitmapFrameDecode> frame_;
    uint32_t width_ = 0;
    uint32_t height_ = 0;
    uint16_t orientation_ = 1;
    int32_t xPelsPerMeter_ = 0;
    int32_t yPelsPerMeter_ = 0;
};

// Whether the system's TIFF decoder puts the two bytes of samples in order that begin with the high
// one. Some do not, and show noise.
bool ReadsBigEndianSamples();

// Whether the system has a decoder for a container that not every Windows decodes.
bool DecoderInstalled(Container container);

}  // namespace tessary::wic
