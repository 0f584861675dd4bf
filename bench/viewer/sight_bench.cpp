#include "bench/viewer/sight_bench.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "app/settings/modValue.h"
#include "bench/common/stopwatch.h"
#include "ui/form/message_loop.h"
#include "ui/main/picture_stage.h"

namespace tessary::bench {
namespace {

constexpr SIZE kView{2560, 1440};
constexpr int kSteps = 40;

// A window with a picture, of which each step is drawn in memory.
class Stage {
  public:
    Stage() {
        PictureBox::Events events;
        events.nudged = [this] { stage_.ShowSharp(); };
        box_.Create(parent_, std::move(events));
        box_.SetBounds(0, 0, kView.cx, kView.cy);
        stage_.SetRule({.sizeMode = kSizeModeWindow});
        Follow();
    }
    ~Stage() {
        stage_.SetPicture({}, {});
        DestroyWindow(parent_);
    }
    void Resize(SIZE size) {
        box_.SetBounds(0, 0, size.cx, size.cy);
        Follow();
    }
    void Draw() {
        const SIZE area = box_.AreaSize();
        stage_.Paint(memory_.Get(), {0, 0, area.cx, area.cy});
    }
    void WaitUntilSharp() {
        while (!stage_.IsSharp()) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
            DoEvents();
        }
    }
    PictureStage& Get() { return stage_; }

  private:
    void Follow() { stage_.RoomChanged(kView, false); }

    HWND parent_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, kView.cx, kView.cy, nullptr,
                                   nullptr, nullptr, nullptr);
    UniqueMemoryDc memory_{CreateCompatibleDC(nullptr)};
    PictureBox box_;
    PictureStage stage_{box_};
};

// Of each step on its own: the median and the longest.
template <typename Step>
void Measure(const char* what, Step step) {
    std::vector<double> times;
    for (int i = 0; i < kSteps; ++i)
        times.push_back(Timed([&] { step(i); }));
    const double longest = *std::max_element(times.begin(), times.end());
    std::printf("%-32s %7.1f ms, at most %5.1f ms\n", what, Median(times), longest);
}

}  // namespace

void BenchSight(Picture picture) {
    Stage stage;
    stage.Get().SetPicture(std::move(picture), {});
    stage.Draw();
    const auto size = [](int i) { return SIZE{kView.cx - i * 7 % 200, kView.cy - i * 5 % 150}; };
    Measure("window resized, at once", [&](int i) {
        stage.Resize(size(i));
        stage.Draw();
    });
    Measure("window resized, until sharp", [&](int i) {
        stage.Resize(size(i));
        stage.WaitUntilSharp();
        stage.Draw();
    });
    stage.Get().SetLight(kernel::Light::kLinear);
    Measure("the same in linear light", [&](int i) {
        stage.Resize(size(i));
        stage.WaitUntilSharp();
        stage.Draw();
    });
    stage.Get().SetLight(kernel::Light::kStored);
    stage.Resize(kView);
    stage.WaitUntilSharp();
    Measure("zoomed by the wheel", [&](int i) {
        stage.Get().ZoomBy(i < kSteps / 2 ? 1.07 : 1 / 1.07, {900, 700});
        stage.Draw();
    });
    stage.Get().ToggleFit({});
    const auto drag = [&](int i) {
        stage.Get().DragTo({1000 + i * 9 % 300, 700 - i * 7 % 300});
        stage.Draw();
    };
    stage.Get().BeginDrag({1000, 700});
    Measure("dragged at 100 %", drag);
    stage.Get().ZoomBy(0.7, {1000, 700});
    stage.WaitUntilSharp();
    stage.Get().BeginDrag({1000, 700});
    Measure("dragged at 70 %", [&](int i) {
        drag(i);
        DoEvents();  // what has become sharp meanwhile is taken
    });
    stage.Get().EndDrag();
}

}  // namespace tessary::bench
