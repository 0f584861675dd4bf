// What is seen of a picture on the screen, at any scale and in motion.
#include "ui/main/picture_stage.h"

#include <gtest/gtest.h>

#include <exception>
#include <vector>

#include "app/settings/modValue.h"
#include "picture/view/picture_kernel.h"
#include "tests/helpers/dib/test_bitmap.h"
#include "tests/src/ui/run_until.h"
#include "tests/src/ui/test_picture.h"
#include "tests/support/helper_libraries.h"

namespace tessary {
namespace {

constexpr SIZE kArea{200, 150};

// The monitor's profile.
std::optional<color::Profile> monitor;
std::optional<color::Profile> ReadMonitor(HMONITOR) {
    return monitor;
}

class PictureStageTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::LoadHelperLibraries(); }
    PictureStageTest() {
        PictureBox::Events events;
        events.sized = [this] { stage_.RoomChanged({900, 700}, bars_); };
        events.nudged = [this] { stage_.ShowSharp(); };
        events.paint = [this](HDC screen, const RECT& area) { return stage_.Paint(screen, area); };
        EXPECT_TRUE(box_.Create(parent_, std::move(events)));
        box_.SetBounds(0, 0, kArea.cx, kArea.cy);
        ShowWindow(parent_, SW_SHOWNOACTIVATE);
    }
    ~PictureStageTest() override { DestroyWindow(parent_); }

    void SetMode(int16_t mode) { stage_.SetRule({.sizeMode = mode}); }
    void Show(int width, int height) { stage_.SetPicture(test::TestPicture(width, height), {}); }
    bool WaitUntilSharp() {
        return test::RunUntil([this] { return stage_.IsSharp(); });
    }
    // Looks at every third pixel of the area: `colour` of what the picture shows there, else the
    // background.
    template <typename Colour>
    void ExpectOnScreen(Colour colour, const char* what) {
        const ViewPosition at = stage_.Seen().Position();
        const SIZE shown = stage_.Seen().Shown();
        const RECT picture{at.x, at.y, at.x + shown.cx, at.y + shown.cy};
        int wrong = 0;
        box_.Refresh();
        const HDC context = GetDC(box_.Handle());
        for (int y = 0; y < box_.AreaSize().cy; y += 3) {
            for (int x = 0; x < box_.AreaSize().cx; x += 3) {
                const COLORREF expected = PtInRect(&picture, {x, y})
                                              ? colour(x - at.x, y - at.y)
                                              : GetSysColor(COLOR_APPWORKSPACE);
                wrong += GetPixel(context, x, y) != expected;
            }
        }
        ReleaseDC(box_.Handle(), context);
        EXPECT_EQ(wrong, 0) << what;
    }
    void ExpectAsItIs(const char* what) { ExpectOnScreen(test::PixelAt, what); }
    // The kernel's whole picture, of which a part is seen.
    void ExpectSharp(const Picture& picture, const char* what) {
        ASSERT_TRUE(WaitUntilSharp()) << what;
        const SIZE shown = stage_.Seen().Shown();
        const Picture resized = ResizePicture(picture, shown.cx, shown.cy);
        ASSERT_TRUE(resized);
        ExpectOnScreen(
            [&](int x, int y) {
                const uint8_t* const p = &resized.View().Row(y)[static_cast<size_t>(x) * 3];
                return RGB(p[2], p[1], p[0]);
            },
            what);
    }

    HWND parent_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 100, 100, kArea.cx, kArea.cy,
                                   nullptr, nullptr, nullptr, nullptr);
    PictureBox box_;
    bool bars_ = false;
    PictureStage stage_{box_, MonitorColors(ReadMonitor)};
};

TEST_F(PictureStageTest, ShowsThePixelsAsTheyAre) {
    ExpectAsItIs("empty");
    Show(60, 40);
    ExpectAsItIs("small");
    Show(250, 240);
    ExpectAsItIs("large");
    box_.SetBounds(0, 0, 120, 150);
    box_.SetBounds(0, 0, kArea.cx, kArea.cy);
    ExpectAsItIs("uncovered again");
    for (const int key : {VK_RIGHT, VK_DOWN, VK_DOWN, VK_LEFT, VK_DOWN}) {
        stage_.KeyDown(key);
        ExpectAsItIs("moved");
    }
    for (const double factor : {2.0, 1.75, 2.0}) {
        stage_.ZoomBy(factor, {31, 77});
        const SIZE shown = stage_.Seen().Shown();
        ExpectOnScreen(
            [&](int x, int y) {
                return test::PixelAt(static_cast<int>((2 * x + 1) * 250 / (2 * shown.cx)),
                                     static_cast<int>((2 * y + 1) * 240 / (2 * shown.cy)));
            },
            "pixels to be seen");
    }
    stage_.SetPicture({}, {});
    ExpectAsItIs("emptied");
}

TEST_F(PictureStageTest, MakesSharpWhatIsSeenAndFollowsTheWindow) {
    const Picture picture = test::TestPicture(250, 240);
    SetMode(kSizeModeWindow);
    stage_.SetPicture(picture.Another(), {});
    EXPECT_EQ(stage_.Seen().Shown().cy, kArea.cy);
    ExpectSharp(picture, "all of it");
    box_.SetBounds(0, 0, 90, 150);
    EXPECT_EQ(stage_.Seen().Shown().cx, 90);
    ExpectSharp(picture, "as large as the window");
    box_.SetBounds(0, 0, kArea.cx, kArea.cy);
    stage_.ZoomBy(2.5, {150, 20});
    ExpectSharp(picture, "a part");
    // In motion what is sharp already stays so, and what comes into sight becomes it.
    stage_.BeginDrag({100, 100});
    for (const POINT at : {POINT{90, 95}, POINT{70, 80}, POINT{150, 120}}) {
        stage_.DragTo(at);
        if (at.x == 70) continue;
        ExpectSharp(picture, "dragged");
    }
    stage_.EndDrag();
    // What was prepared is shown at once, unless another size is wanted meanwhile.
    SetMode(kSizeModeWindow);
    stage_.SetPicture(picture.Another(), ResizePicture(picture, 156, 150));
    EXPECT_TRUE(stage_.IsSharp());
    ExpectSharp(picture, "prepared");
    stage_.SetPicture(picture.Another(), ResizePicture(picture, 78, 75));
    EXPECT_FALSE(stage_.IsSharp());
    ExpectSharp(picture, "prepared in another size");
}

// Takes all blocks of the address space that a thread's stack would fit into.
class NoRoomForThreads {
  public:
    NoRoomForThreads() {
        for (size_t size = size_t{256} << 20; size >= size_t{1} << 20; size /= 2) {
            while (void* block = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS))
                blocks_.push_back(block);
        }
    }
    NoRoomForThreads(const NoRoomForThreads&) = delete;
    NoRoomForThreads& operator=(const NoRoomForThreads&) = delete;
    ~NoRoomForThreads() {
        for (void* block : blocks_)
            VirtualFree(block, 0, MEM_RELEASE);
    }

  private:
    std::vector<void*> blocks_ = [] {
        std::vector<void*> blocks;
        blocks.reserve(8192);
        return blocks;
    }();
};

TEST_F(PictureStageTest, StaysAsItComesWhileThereIsNoThreadToBeHad) {
    const Picture picture = test::TestPicture(250, 240);
    SetMode(kSizeModeWindow);
    bool goesOn = false;
    try {
        const NoRoomForThreads full;  // nor for those that a failed expectation begins
        stage_.SetPicture(picture.Another(), {});
        goesOn = !stage_.IsSharp();
    } catch (const std::exception&) {
    }
    EXPECT_TRUE(goesOn);
    stage_.ZoomBy(1.25, {});
    ExpectSharp(picture, "later");
}

TEST_F(PictureStageTest, ShowsTheColoursOfTheMonitor) {
    Show(250, 240);
    ExpectAsItIs("without a profile");
    color::Primaries exchanged = color::kSrgbPrimaries;
    std::swap(exchanged.red, exchanged.green);
    monitor = color::Profile::FromPrimaries(exchanged, {1.8});
    stage_.MonitorMayHaveChanged();
    ExpectAsItIs("nobody has told of it");
    stage_.ForgetColors();
    const auto way =
        color::Transform::Make(color::Profile::Srgb(), *monitor, color::Layout::kBgra8);
    const auto converted = [&](int x, int y) {
        uint8_t pixel[4] = {128, static_cast<uint8_t>(y), static_cast<uint8_t>(x), 0};
        way->Convert(pixel, pixel, 1);
        return RGB(pixel[2], pixel[1], pixel[0]);
    };
    EXPECT_NE(converted(9, 99), test::PixelAt(9, 99));
    ExpectOnScreen(converted, "other colours");
    stage_.KeyDown(VK_RIGHT);
    stage_.KeyDown(VK_DOWN);
    ExpectOnScreen(converted, "moved");
    monitor.reset();
    stage_.ForgetColors();
    ExpectAsItIs("as before");
}

TEST_F(PictureStageTest, ShowsWhatIsBehindTransparency) {
    // Red, with an alpha that falls from the left to the right; below all of it is clear.
    dib::test::TestBitmap bitmap{255, 100, 32, {}};
    bitmap.compression = 6;
    bitmap.masks.assign(dib::kMasksAlpha, dib::kMasksAlpha + 4);
    const Picture picture = Picture::Make(bitmap.Info(), [](std::span<uint8_t> rows) {
        for (size_t i = 0; i < rows.size(); i += 4) {
            rows[i] = rows[i + 1] = 0;
            rows[i + 2] = 200;
            rows[i + 3] = i / 4 / 255 < 50 ? uint8_t{0} : static_cast<uint8_t>(255 - i / 4 % 255);
        }
        return true;
    });
    ASSERT_TRUE(picture);
    const auto expect = [&](double scale, int tolerance, const char* what) {
        box_.Refresh();
        const ViewPosition at = stage_.Seen().Position();
        const HDC context = GetDC(box_.Handle());
        for (int y = 10; y < 90; y += 7) {
            for (int x = 10; x < 100; x += 7) {
                const auto shownX = static_cast<int>(x * scale);
                const auto shownY = static_cast<int>(y * scale);
                const int square = (shownX / 8 + shownY / 8) % 2 == 0 ? 255 : 204;
                const int through = y >= 50 ? 255 : x;
                const COLORREF seen = GetPixel(context, at.x + shownX, at.y + shownY);
                EXPECT_NEAR(GetRValue(seen), (200 * (255 - through) + square * through) / 255,
                            tolerance)
                    << what << ": " << x << ", " << y;
                EXPECT_NEAR(GetGValue(seen), square * through / 255, tolerance) << what;
            }
        }
        ReleaseDC(box_.Handle(), context);
    };
    stage_.SetPicture(picture.Another(), {});
    expect(1, 1, "as it is");
    SetMode(kSizeModeWindow);
    stage_.SetPicture(picture.Another(), ResizePicture(picture, 200, 78));
    EXPECT_FALSE(stage_.IsSharp()) << "white stands in what was prepared";
    ASSERT_TRUE(WaitUntilSharp());
    expect(200.0 / 255, 4, "sharp");
    stage_.SetLight(kernel::Light::kLinear);
    ASSERT_TRUE(WaitUntilSharp());
    expect(200.0 / 255, 4, "of light");
    stage_.SetBackdrop(kBackdropBlack);
    box_.Refresh();
    const HDC context = GetDC(box_.Handle());
    EXPECT_EQ(GetPixel(context, 100, 110), RGB(0, 0, 0));
    ReleaseDC(box_.Handle(), context);
}

TEST_F(PictureStageTest, MixesLightWhereThatIsChosenAndKeepsWhatIsSeenUntilThen) {
    const auto levelOnScreen = [&] {
        box_.Refresh();
        const HDC context = GetDC(box_.Handle());
        int sum = 0;
        for (int i = 0; i < 64; ++i)
            sum += GetGValue(GetPixel(context, 60 + i % 8, 60 + i / 8));
        ReleaseDC(box_.Handle(), context);
        return sum / 64;
    };
    // Every other pixel is white: half the light of white is that of level 188.
    const Picture pattern = test::PictureOf(400, 300, [](std::span<uint8_t> rows) {
        for (size_t i = 0; i < rows.size(); ++i)
            rows[i] = (i % 1200 / 3 + i / 1200) % 2 == 0 ? 255 : 0;
    });
    SetMode(kSizeModeWindow);
    stage_.SetPicture(pattern.Another(), {});
    ASSERT_TRUE(WaitUntilSharp());
    EXPECT_NEAR(levelOnScreen(), 128, 3);
    stage_.SetLight(kernel::Light::kLinear);
    EXPECT_FALSE(stage_.IsSharp());
    EXPECT_NEAR(levelOnScreen(), 128, 3) << "until it is made anew";
    ASSERT_TRUE(WaitUntilSharp());
    EXPECT_NEAR(levelOnScreen(), 188, 3);
    stage_.ZoomBy(1.1, {100, 75});
    const SIZE zoomed = stage_.Seen().Shown();
    stage_.SetLight(kernel::Light::kStored);
    ASSERT_TRUE(WaitUntilSharp());
    EXPECT_NEAR(levelOnScreen(), 128, 6);
    EXPECT_EQ(stage_.Seen().Shown().cx, zoomed.cx);
    stage_.SetLight(kernel::Light::kLinear);
    const Picture prepared =
        ResizePicture(pattern, 200, 150, Handover::kNoFile, kernel::Light::kLinear);
    stage_.ToggleFit({});
    stage_.SetPicture(pattern.Another(), prepared);
    EXPECT_TRUE(stage_.IsSharp());
    EXPECT_NEAR(levelOnScreen(), 188, 3);
}

TEST_F(PictureStageTest, ScrollBarsTakeAndLeadTheirWay) {
    bars_ = true;
    box_.SetBounds(0, 0, kArea.cx + 1, kArea.cy);
    const int thick = GetSystemMetrics(SM_CXVSCROLL);
    const int flat = GetSystemMetrics(SM_CYHSCROLL);
    Show(kArea.cx, kArea.cy);
    EXPECT_EQ(box_.AreaSize().cx, kArea.cx + 1) << "it has room";
    Show(kArea.cx, kArea.cy + 1);  // the bar beside leaves too little for the width
    EXPECT_EQ(box_.AreaSize().cx, kArea.cx + 1 - thick);
    EXPECT_EQ(box_.AreaSize().cy, kArea.cy - flat);
    stage_.Scroll(SB_VERT, SB_BOTTOM, 0);
    stage_.Scroll(SB_HORZ, SB_THUMBTRACK, 5);
    EXPECT_EQ(stage_.Seen().Position(), (ViewPosition{-5, -1 - flat}));
    ExpectAsItIs("scrolled");
    SetMode(kSizeModeWindow);
    EXPECT_EQ(box_.AreaSize().cx, kArea.cx + 1);
    SetMode(kSizeModeWidth);
    Show(400, 1000);
    EXPECT_EQ(stage_.Seen().Shown().cx, kArea.cx + 1 - thick);
    EXPECT_EQ(box_.AreaSize().cy, kArea.cy);
    box_.SetBounds(0, 0, 100, 800);  // as high as the picture is then
    EXPECT_EQ(stage_.Seen().Shown().cx, 100);
}

}  // namespace
}  // namespace tessary
