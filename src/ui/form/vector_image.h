// Small square pictures drawn from outlines, so that they are sharp at every resolution: the
// images of toolbars. Knows nothing of Windows.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <vector>

namespace tessary {

// A place in a picture that is designed on a grid of 16 × 16 units; y grows downwards.
struct GridPoint {
    double x;
    double y;
};

struct ArgbColor {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

// What an outline is filled with: a colour, or nothing at all, which takes away what was there.
using Paint = std::optional<ArgbColor>;
constexpr Paint kHole = std::nullopt;

// Rows from the top, 0xAARRGGBB; the colours are not multiplied by the alpha value.
struct ArgbImage {
    int size = 0;  // pixels of a side
    std::vector<uint32_t> pixels;
};

// How a picture is wanted.
struct ImageLook {
    int pixels;   // of a side
    bool onDark;  // for a dark background
};

// The picture without its colours and paler, as a disabled button shows it.
ArgbImage Greyed(ArgbImage image);

// The picture in the middle of a larger one of `size` pixels that is otherwise transparent.
ArgbImage Centred(const ArgbImage& image, int size);

// Straight edges are moved to the nearest edge of a pixel, the same way on both sides of the
// middle; slanted and round ones are smoothed.
class VectorCanvas {
  public:
    static constexpr double kUnits = 16;

    // An empty, fully transparent picture.
    explicit VectorCanvas(int pixels);

    // The rectangle between two corners.
    void FillRectangle(GridPoint topLeft, GridPoint bottomRight, const Paint& paint);

    // A line of `width` along the inside of a rectangle.
    void DrawFrame(GridPoint topLeft, GridPoint bottomRight, double width, const Paint& paint);

    // A closed outline; its corners are moved to whole pixels.
    void FillPolygon(std::initializer_list<GridPoint> corners, const Paint& paint);

    // A line through the points, round where it bends and cut straight at its ends. Stays where it
    // is put.
    void DrawLine(std::span<const GridPoint> points, double width, const Paint& paint);

    // A line along a circle, between angles in degrees; 0 is on the right, 90 below.
    void DrawArc(GridPoint centre, double radius, double fromAngle, double toAngle, double width,
                 const Paint& paint);

    ArgbImage Image() const;

  private:
    using Outline = std::vector<GridPoint>;  // in pixels
    struct Pixel {
        float red, green, blue, alpha;  // 0 to 1, colours multiplied by alpha
    };

    double Snap(double units) const;
    GridPoint Snap(GridPoint point) const { return {Snap(point.x), Snap(point.y)}; }
    GridPoint Scaled(GridPoint point) const { return {point.x * scale_, point.y * scale_}; }

    // Fills what lies inside any of the outlines, all of which run clockwise; one that runs the
    // other way cuts a hole.
    void Fill(std::span<const Outline> outlines, const Paint& paint);
    void Blend(std::span<const float> coverage, const Paint& paint);

    int size_;
    double scale_;  // pixels of a unit
    std::vector<Pixel> pixels_;
};

}  // namespace tessary
