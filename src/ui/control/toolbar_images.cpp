#include "ui/control/toolbar_images.h"

namespace tessary {
namespace {

struct Palette {
    ArgbColor ink;
    ArgbColor blue;
    ArgbColor green;
    ArgbColor red;
    ArgbColor amber;
    ArgbColor darkAmber;
};

constexpr Palette kOnLight{.ink = {0x3A, 0x43, 0x4D},
                           .blue = {0x1F, 0x6F, 0xC0},
                           .green = {0x24, 0x86, 0x4A},
                           .red = {0xC4, 0x31, 0x2B},
                           .amber = {0xE8, 0xB0, 0x3A},
                           .darkAmber = {0xB8, 0x7A, 0x12}};
constexpr Palette kOnDark{.ink = {0xE2, 0xE6, 0xEA},
                          .blue = {0x6C, 0xB6, 0xF7},
                          .green = {0x72, 0xCE, 0x8E},
                          .red = {0xF4, 0x7A, 0x70},
                          .amber = {0xF3, 0xC9, 0x62},
                          .darkAmber = {0xC9, 0x93, 0x2E}};

constexpr double kRight = VectorCanvas::kUnits;

// A triangle 12 units high that points to the right, or mirrored to the left.
enum class Direction { kLeft, kRight };

class Artist {
  public:
    explicit Artist(const ImageLook& look)
        : canvas_(look.pixels), colors_(look.onDark ? kOnDark : kOnLight) {}

    ArgbImage Draw(ToolbarImage image) {
        switch (image) {
            case ToolbarImage::kRewind:
                Arrows(Direction::kLeft);
                break;
            case ToolbarImage::kReversePlay:
                Triangle(Direction::kLeft, 4, 10, 12, colors_.green);
                break;
            case ToolbarImage::kStepBack:
                Step(Direction::kLeft);
                break;
            case ToolbarImage::kStop:
                canvas_.FillRectangle({3, 3}, {13, 13}, colors_.red);
                break;
            case ToolbarImage::kStepForward:
                Step(Direction::kRight);
                break;
            case ToolbarImage::kPlay:
                Triangle(Direction::kRight, 4, 10, 12, colors_.green);
                break;
            case ToolbarImage::kFastForward:
                Arrows(Direction::kRight);
                break;
            case ToolbarImage::kOriginalSize:
                OriginalSize();
                break;
            case ToolbarImage::kSmallSize:
                FixedSize(4, 3);
                break;
            case ToolbarImage::kMediumSize:
                FixedSize(7, 5);
                break;
            case ToolbarImage::kLargeSize:
                FixedSize(10, 8);
                break;
            case ToolbarImage::kScreenSize:
                Screen();
                break;
            case ToolbarImage::kWindowSize:
                WindowSize();
                break;
            case ToolbarImage::kWidthSize:
                WidthSize();
                break;
            case ToolbarImage::kPauseFrames:
                Film();
                canvas_.FillRectangle({6, 5}, {7, 11}, colors_.blue);
                canvas_.FillRectangle({9, 5}, {10, 11}, colors_.blue);
                break;
            case ToolbarImage::kPlayFrames:
                Film();
                canvas_.FillPolygon({{6, 5}, {11, 8}, {6, 11}}, colors_.blue);
                break;
            case ToolbarImage::kOpen:
                Folder();
                break;
            case ToolbarImage::kSave:
                Disk();
                break;
            case ToolbarImage::kAddToDeleteList:
                Bin();
                Plus();
                break;
            case ToolbarImage::kCancelDelete:
                Bin();
                BackArrow();
                break;
            case ToolbarImage::kFold:
                Chevron(7, -5);
                Chevron(12, -5);
                break;
            case ToolbarImage::kUnfold:
                Chevron(4, 5);
                Chevron(9, 5);
                break;
        }
        return canvas_.Image();
    }

  private:
    void Triangle(Direction to, double base, double length, double height, const Paint& paint) {
        const double tip = base + length;
        const auto x = [to](double value) {
            return to == Direction::kRight ? value : kRight - value;
        };
        canvas_.FillPolygon({{x(base), 8 - height / 2}, {x(tip), 8}, {x(base), 8 + height / 2}},
                            paint);
    }

    void Arrows(Direction to) {
        Triangle(to, 1, 7, 12, colors_.ink);
        Triangle(to, 8, 7, 12, colors_.ink);
    }

    void Step(Direction to) {
        Triangle(to, 3, 8, 12, colors_.ink);
        const double bar = to == Direction::kRight ? 11 : 3;
        canvas_.FillRectangle({bar, 2}, {bar + 2, 14}, colors_.ink);
    }

    // "1:1" in a frame.
    void OriginalSize() {
        canvas_.DrawFrame({1, 2}, {15, 14}, 1, colors_.ink);
        for (const double digit : {3.0, 10.0}) {
            canvas_.FillRectangle({digit, 6}, {digit + 1, 7}, colors_.blue);
            canvas_.FillRectangle({digit + 1, 5}, {digit + 3, 11}, colors_.blue);
        }
        for (const double dot : {6.0, 9.0}) {
            canvas_.FillRectangle({7, dot}, {9, dot + 2}, colors_.blue);
        }
    }

    // A frame that is filled from its lower left corner.
    void FixedSize(double width, double height) {
        canvas_.DrawFrame({1, 2}, {15, 14}, 1, colors_.ink);
        canvas_.FillRectangle({3, 12 - height}, {3 + width, 12}, colors_.blue);
    }

    void Screen() {
        canvas_.FillRectangle({1, 2}, {15, 12}, colors_.ink);
        canvas_.FillRectangle({2, 3}, {14, 11}, colors_.blue);
        canvas_.FillRectangle({6, 12}, {10, 13}, colors_.ink);
        canvas_.FillRectangle({4, 13}, {12, 14}, colors_.ink);
    }

    // A window with its title, and a picture that fills it.
    void WindowSize() {
        canvas_.DrawFrame({1, 2}, {15, 14}, 1, colors_.ink);
        canvas_.FillRectangle({1, 2}, {15, 5}, colors_.ink);
        canvas_.FillRectangle({3, 6}, {13, 13}, colors_.blue);
    }

    // The same with a picture that goes on below.
    void WidthSize() {
        canvas_.FillRectangle({1, 2}, {15, 5}, colors_.ink);
        canvas_.FillRectangle({1, 5}, {2, 14}, colors_.ink);
        canvas_.FillRectangle({14, 5}, {15, 14}, colors_.ink);
        canvas_.FillRectangle({3, 6}, {13, 15}, colors_.blue);
    }

    // A frame with the holes that it is moved by.
    void Film() {
        canvas_.FillRectangle({1, 1}, {15, 15}, colors_.ink);
        canvas_.FillRectangle({2, 4}, {14, 12}, kHole);
        for (const double hole : {2.0, 5.0, 8.0, 11.0}) {
            canvas_.FillRectangle({hole + 0.5, 2}, {hole + 2, 3}, kHole);
            canvas_.FillRectangle({hole + 0.5, 13}, {hole + 2, 14}, kHole);
        }
    }

    void Folder() {
        canvas_.FillPolygon({{1, 3}, {6, 3}, {8, 5}, {13, 5}, {13, 13}, {1, 13}},
                            colors_.darkAmber);
        canvas_.FillPolygon({{4, 7}, {16, 7}, {13, 14}, {1, 14}}, colors_.amber);
    }

    void Disk() {
        canvas_.FillPolygon({{2, 2}, {12, 2}, {14, 4}, {14, 14}, {2, 14}}, colors_.blue);
        canvas_.FillRectangle({5, 2}, {11, 6}, kHole);
        canvas_.FillRectangle({8, 2}, {10, 5}, colors_.blue);
        canvas_.FillRectangle({4, 9}, {12, 14}, kHole);
        canvas_.FillRectangle({5, 10}, {11, 11}, colors_.blue);
        canvas_.FillRectangle({5, 12}, {11, 13}, colors_.blue);
    }

    // Leaves its lower right quarter free for what is done with it.
    void Bin() {
        canvas_.FillRectangle({3, 1}, {8, 3}, colors_.ink);
        canvas_.FillRectangle({4, 2}, {7, 3}, kHole);
        canvas_.FillRectangle({0, 3}, {11, 5}, colors_.ink);
        canvas_.FillRectangle({1, 6}, {10, 15}, colors_.ink);
        canvas_.FillRectangle({3, 8}, {4, 13}, kHole);
        canvas_.FillRectangle({5, 8}, {6, 13}, kHole);
        canvas_.FillRectangle({7, 7}, {16, 16}, kHole);
    }

    void Plus() {
        canvas_.FillRectangle({11, 8}, {13, 16}, colors_.red);
        canvas_.FillRectangle({8, 11}, {16, 13}, colors_.red);
    }

    void BackArrow() {
        canvas_.FillPolygon({{8, 11}, {11, 8}, {11, 14}}, colors_.green);
        canvas_.FillRectangle({11, 10}, {13, 12}, colors_.green);
        canvas_.DrawArc({13, 13}, 2, -90, 90, 2, colors_.green);
        canvas_.FillRectangle({11, 14}, {13, 16}, colors_.green);
    }

    // Its tip is `rise` below the two ends, which are at `y`.
    void Chevron(double y, double rise) {
        const double tip = y + rise;
        const double thickness = rise < 0 ? 2 : -2;
        canvas_.FillPolygon({{3, y},
                             {8, tip},
                             {13, y},
                             {13, y + thickness},
                             {8, tip + thickness},
                             {3, y + thickness}},
                            colors_.ink);
    }

    VectorCanvas canvas_;
    const Palette& colors_;
};

}  // namespace

ArgbImage DrawToolbarImage(ToolbarImage image, const ImageLook& look) {
    return Artist(look).Draw(image);
}

}  // namespace tessary
