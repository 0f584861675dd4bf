#include "ui/form/vector_image.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessary {
namespace {

// Rows that each row of pixels is measured in; along a row the measure is exact.
constexpr int kRowsPerPixel = 16;

// Corners of what stands for a circle.
constexpr int kCircleCorners = 48;

// Of a greyed picture: the middle that its levels come closer to, and what is left of the opacity.
constexpr uint32_t kMiddleGrey = 120;
constexpr uint32_t kGreyedPercent = 50;

struct Crossing {
    double x;
    int direction;  // +1 where the outline goes down, -1 where it goes up
};

// Where the outlines meet the horizontal line at `y`, from left to right.
template <typename Outlines>
void FindCrossings(const Outlines& outlines, double y, std::vector<Crossing>& crossings) {
    crossings.clear();
    for (const auto& outline : outlines) {
        for (size_t corner = 0; corner < outline.size(); ++corner) {
            const GridPoint& from = outline[corner];
            const GridPoint& to = outline[(corner + 1) % outline.size()];
            if ((from.y <= y) == (to.y <= y)) continue;
            const double x = from.x + (y - from.y) * (to.x - from.x) / (to.y - from.y);
            crossings.push_back({x, from.y < to.y ? 1 : -1});
        }
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
}

// Adds a span of one measured row to the coverage of the pixels it touches.
void CoverSpan(std::span<float> row, double from, double to) {
    from = std::clamp(from, 0.0, static_cast<double>(row.size()));
    to = std::clamp(to, 0.0, static_cast<double>(row.size()));
    for (auto pixel = static_cast<size_t>(from); static_cast<double>(pixel) < to; ++pixel) {
        const auto left = static_cast<double>(pixel);
        const double covered = std::min(to, left + 1) - std::max(from, left);
        row[pixel] += static_cast<float>(covered / kRowsPerPixel);
    }
}

uint32_t Level(float value) {
    return static_cast<uint32_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

GridPoint OnCircle(GridPoint centre, double radius, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return {centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)};
}

}  // namespace

ArgbImage Greyed(ArgbImage image) {
    for (uint32_t& pixel : image.pixels) {
        const uint32_t red = pixel >> 16 & 0xFF;
        const uint32_t green = pixel >> 8 & 0xFF;
        const uint32_t blue = pixel & 0xFF;
        const uint32_t brightness = (red * 299 + green * 587 + blue * 114) / 1000;
        const uint32_t grey = (brightness + kMiddleGrey) / 2;
        const uint32_t alpha = (pixel >> 24) * kGreyedPercent / 100;
        pixel = alpha << 24 | grey << 16 | grey << 8 | grey;
    }
    return image;
}

ArgbImage Centred(const ArgbImage& image, int size) {
    const auto side = static_cast<size_t>(size);
    const auto inner = static_cast<size_t>(image.size);
    const size_t margin = (side - inner) / 2;
    ArgbImage larger{size, std::vector<uint32_t>(side * side)};
    for (size_t row = 0; row < inner; ++row) {
        std::copy_n(&image.pixels[row * inner], inner,
                    &larger.pixels[(row + margin) * side + margin]);
    }
    return larger;
}

VectorCanvas::VectorCanvas(int pixels)
    : size_(pixels),
      scale_(pixels / kUnits),
      pixels_(static_cast<size_t>(pixels) * static_cast<size_t>(pixels)) {}

// A place half-way between two pixels goes outwards on either side, which keeps what is symmetric
// symmetric.
double VectorCanvas::Snap(double units) const {
    constexpr double kTie = 1e-6;
    const double outwards = units < kUnits / 2 ? -kTie : kTie;
    return std::round(units * scale_ + outwards);
}

void VectorCanvas::FillRectangle(GridPoint topLeft, GridPoint bottomRight, const Paint& paint) {
    FillPolygon({topLeft, {bottomRight.x, topLeft.y}, bottomRight, {topLeft.x, bottomRight.y}},
                paint);
}

void VectorCanvas::DrawFrame(GridPoint topLeft, GridPoint bottomRight, double width,
                             const Paint& paint) {
    const GridPoint from = Snap(topLeft);
    const GridPoint to = Snap(bottomRight);
    const double line = std::max(1.0, std::round(width * scale_));
    const Outline frame[] = {
        {from, {to.x, from.y}, to, {from.x, to.y}},
        {{from.x + line, from.y + line},
         {from.x + line, to.y - line},
         {to.x - line, to.y - line},
         {to.x - line, from.y + line}},
    };
    Fill(frame, paint);
}

void VectorCanvas::FillPolygon(std::initializer_list<GridPoint> corners, const Paint& paint) {
    Outline outline;
    for (const GridPoint& corner : corners)
        outline.push_back(Snap(corner));
    Fill({&outline, 1}, paint);
}

void VectorCanvas::DrawLine(std::span<const GridPoint> points, double width, const Paint& paint) {
    std::vector<Outline> outlines;
    for (size_t next = 1; next < points.size(); ++next) {
        const GridPoint& from = points[next - 1];
        const GridPoint& to = points[next];
        const double length = std::hypot(to.x - from.x, to.y - from.y);
        const double x = (to.y - from.y) * width / 2 / length;
        const double y = (from.x - to.x) * width / 2 / length;
        outlines.push_back({Scaled({from.x + x, from.y + y}), Scaled({to.x + x, to.y + y}),
                            Scaled({to.x - x, to.y - y}), Scaled({from.x - x, from.y - y})});
        if (next + 1 == points.size()) continue;
        Outline joint;
        for (int corner = 0; corner < kCircleCorners; ++corner) {
            joint.push_back(Scaled(OnCircle(to, width / 2, corner * 360.0 / kCircleCorners)));
        }
        outlines.push_back(std::move(joint));
    }
    Fill(outlines, paint);
}

void VectorCanvas::DrawArc(GridPoint centre, double radius, double fromAngle, double toAngle,
                           double width, const Paint& paint) {
    std::vector<GridPoint> points;
    for (int step = 0; step <= kCircleCorners; ++step) {
        points.push_back(
            OnCircle(centre, radius, fromAngle + (toAngle - fromAngle) * step / kCircleCorners));
    }
    DrawLine(points, width, paint);
}

void VectorCanvas::Fill(std::span<const Outline> outlines, const Paint& paint) {
    std::vector<float> coverage(pixels_.size());
    std::vector<Crossing> crossings;
    for (int row = 0; row < size_ * kRowsPerPixel; ++row) {
        FindCrossings(outlines, (row + 0.5) / kRowsPerPixel, crossings);
        const std::span<float> pixels = std::span(coverage).subspan(
            static_cast<size_t>(row / kRowsPerPixel * size_), static_cast<size_t>(size_));
        int inside = 0;
        double from = 0;
        for (const Crossing& crossing : crossings) {
            if (inside == 0) from = crossing.x;
            inside += crossing.direction;
            if (inside == 0) CoverSpan(pixels, from, crossing.x);
        }
    }
    Blend(coverage, paint);
}

void VectorCanvas::Blend(std::span<const float> coverage, const Paint& paint) {
    const ArgbColor color = paint.value_or(ArgbColor{});
    const float alpha = paint ? 1.0F : 0.0F;
    for (size_t i = 0; i < pixels_.size(); ++i) {
        const float share = std::min(coverage[i], 1.0F);
        const auto blend = [share](float& below, float above) { below += (above - below) * share; };
        Pixel& pixel = pixels_[i];
        blend(pixel.red, static_cast<float>(color.red) / 255);
        blend(pixel.green, static_cast<float>(color.green) / 255);
        blend(pixel.blue, static_cast<float>(color.blue) / 255);
        blend(pixel.alpha, alpha);
    }
}

ArgbImage VectorCanvas::Image() const {
    ArgbImage image{size_, {}};
    image.pixels.reserve(pixels_.size());
    for (const Pixel& pixel : pixels_) {
        const uint32_t alpha = Level(pixel.alpha);
        image.pixels.push_back(alpha == 0 ? 0
                                          : alpha << 24 | Level(pixel.red / pixel.alpha) << 16 |
                                                Level(pixel.green / pixel.alpha) << 8 |
                                                Level(pixel.blue / pixel.alpha));
    }
    return image;
}

}  // namespace tessary
