#include "ui/options/display_page.h"

#include "res/resource.h"

namespace tessary {
namespace {

// A slider position in milliseconds; a tick at every second, a page of one.
constexpr int kIntervalStep = 100;
constexpr int kStepsPerSecond = 10;

}  // namespace

std::wstring IntervalText(int milliseconds) {
    const int tenths = milliseconds / kIntervalStep;
    return std::to_wstring(tenths / kStepsPerSecond) + L'.' +
           std::to_wstring(tenths % kStepsPerSecond) + L" 秒";
}

void DisplayPage::AttachControls() {
    sliderSlideShowTime_.Attach(Dialog(), sliderSlideShowTime);
    sliderSlideShowTime_.SetRange(0, kMostSlideShowTime / kIntervalStep, kStepsPerSecond,
                                  kStepsPerSecond);
    sliderSlideShowTime_.OnChange([this] {
        const int position = sliderSlideShowTime_.Position();
        int16_t& interval = Options().general.slideShowTime;
        // A press of the slider that moves nothing keeps what stands between two positions.
        if (position == interval / kIntervalStep) return;
        interval = static_cast<int16_t>(position * kIntervalStep);
        ShowInterval();
        Changed();
    });
    labelSlideShowTime_.Attach(Dialog(), labelSlideShowTime);
    Fields().Check(checkShowLoops, Options().general.showLoops);
    Fields().Check(checkShowRandom, Options().general.showRandom);
    Fields().Choice(combFixSizeValue,
                    {L"サイズを調整しない", L"640×480", L"800×600", L"1024×768", L"画面サイズ",
                     L"ウィンドウに合わせる", L"ウィンドウの幅に合わせる"},
                    Options().fixSizeValue);
    Fields().Check(checkEnlargeSmall, Options().general.enlargeSmall);
    Fields().Check(checkHoldBoxes, Options().general.holdBoxes);
    Fields().Check(checkKeepZoom, Options().general.keepZoom);
    Fields().Check(checkLinearLight, Options().general.linearLight);
    Fields().Check(checkSizeButton, Options().general.sizeButton);
    Fields().Choice(combDoubleClick, {L"100 % と全体を切り替える", L"全画面表示"},
                    Options().general.doubleClick);
    Fields().Check(checkPlayAnimation, Options().general.playAnimation);
    Fields().Check(checkPlainTitle, Options().general.plainTitle);
    Fields().Check(checkNotePlace, Options().general.notePlace);
    Fields().Check(checkReadAhead, Options().general.readAhead);
    Fields().Number(textReadAheadMemory, Options().general.readAheadMemory, 0,
                    kMostReadAheadMemory);
    Fields().Option(optionOpenFolderType_0, Options().general.openFolderType, 0);
    Fields().Option(optionOpenFolderType_1, Options().general.openFolderType, 1);
}

void DisplayPage::ShowValues() {
    OptionPage::ShowValues();
    sliderSlideShowTime_.SetPosition(Options().general.slideShowTime / kIntervalStep);
    ShowInterval();
}

void DisplayPage::ShowState() {
    Fields().SetEnabled({labelReadAheadMemory, textReadAheadMemory, labelReadAheadMemoryUnit},
                        Options().general.readAhead != 0);
}

void DisplayPage::ShowInterval() {
    labelSlideShowTime_.SetText(IntervalText(Options().general.slideShowTime));
}

}  // namespace tessary
