#include "ui/dialogs/frmSaveOption.h"

#include <string>

#include "res/resource.h"

namespace tessary {
namespace {

// The first numbers of the panels; a panel's controls have those up to the next one's.
constexpr int kPanels[] = {pictureOptionPanel_0, pictureOptionPanel_1, pictureOptionPanel_2,
                           pictureOptionPanelsEnd};

// A slider position is that much of the quality.
constexpr int kQualityStep = 10;
constexpr int kMostQuality = 100;

constexpr int kMostCompression = 9;

constexpr int16_t kTypeOs2 = 1;

int16_t Flag(const Button& box) {
    return box.IsChecked() ? 1 : 0;
}

}  // namespace

frmSaveOption::frmSaveOption() : Dialog(dialogSaveOption) {}

bool frmSaveOption::EditBMP(HWND owner, saving::BmpSaveOptions& options) {
    bmp_ = options;
    if (!Edit(owner, Panel::kBMP)) return false;
    options = bmp_;
    return true;
}

bool frmSaveOption::EditJPEG(HWND owner, saving::JpegSaveOptions& options) {
    jpeg_ = options;
    if (!Edit(owner, Panel::kJPEG)) return false;
    options = jpeg_;
    return true;
}

bool frmSaveOption::EditPNG(HWND owner, saving::PngSaveOptions& options) {
    png_ = options;
    if (!Edit(owner, Panel::kPNG)) return false;
    options = png_;
    return true;
}

bool frmSaveOption::Edit(HWND owner, Panel panel) {
    panel_ = panel;
    cancelled_ = true;
    ShowModal(owner);
    return !cancelled_;
}

void frmSaveOption::Dialog_Load() {
    AttachControls();
    sliderJpegQuality_.SetRange(0, kMostQuality / kQualityStep);
    sliderPNGQuality_.SetRange(0, kMostCompression);
    PutOptions();
    ShowPanel();
    ShowRLEUse();
    ShowValues();
    for (Slider* const slider : {&sliderJpegQuality_, &sliderPNGQuality_})
        slider->OnChange([this] { ShowValues(); });
    for (Button& option : optionBMPFileType_)
        option.OnClick([this] { ShowRLEUse(); });
    FocusFirstControl();
}

void frmSaveOption::AttachControls() {
    optionBMPFileType_[0].Attach(Handle(), optionBMPFileType_0);
    optionBMPFileType_[1].Attach(Handle(), optionBMPFileType_1);
    checkRLE_.Attach(Handle(), checkRLE);
    sliderJpegQuality_.Attach(Handle(), sliderJpegQuality);
    valueJpegQuality_.Attach(Handle(), valueJpegQuality);
    checkJPEGOptimize_.Attach(Handle(), checkJPEGOptimize);
    checkJPEGProgressive_.Attach(Handle(), checkJPEGProgressive);
    sliderPNGQuality_.Attach(Handle(), sliderPNGQuality);
    valuePNGQuality_.Attach(Handle(), valuePNGQuality);
    checkPNGInterless_.Attach(Handle(), checkPNGInterless);
}

// The others are disabled too, or their mnemonics would still work.
void frmSaveOption::ShowPanel() {
    for (int panel = 0; panel < 3; ++panel) {
        const bool chosen = panel == static_cast<int>(panel_);
        for (int id = kPanels[panel]; id < kPanels[panel + 1]; ++id) {
            const HWND control = GetDlgItem(Handle(), id);
            EnableWindow(control, chosen);
            ShowWindow(control, chosen ? SW_SHOWNA : SW_HIDE);
        }
    }
}

void frmSaveOption::PutOptions() {
    optionBMPFileType_[0].SetChecked(bmp_.saveType != kTypeOs2);
    optionBMPFileType_[1].SetChecked(bmp_.saveType == kTypeOs2);
    checkRLE_.SetChecked(bmp_.saveRLE != 0);
    sliderJpegQuality_.SetPosition(jpeg_.quality / kQualityStep);
    checkJPEGOptimize_.SetChecked(jpeg_.optimizedHuffman != 0);
    checkJPEGProgressive_.SetChecked(jpeg_.progressive != 0);
    sliderPNGQuality_.SetPosition(png_.quality);
    checkPNGInterless_.SetChecked(png_.interlace != 0);
}

void frmSaveOption::TakeOptions() {
    bmp_ = {.saveType = Flag(optionBMPFileType_[1]), .saveRLE = Flag(checkRLE_)};
    jpeg_ = {.quality = static_cast<int16_t>(sliderJpegQuality_.Position() * kQualityStep),
             .progressive = Flag(checkJPEGProgressive_),
             .optimizedHuffman = Flag(checkJPEGOptimize_)};
    png_ = {.quality = static_cast<int16_t>(sliderPNGQuality_.Position()),
            .interlace = Flag(checkPNGInterless_)};
}

void frmSaveOption::ShowValues() {
    valueJpegQuality_.SetText(std::to_wstring(sliderJpegQuality_.Position() * kQualityStep));
    valuePNGQuality_.SetText(std::to_wstring(sliderPNGQuality_.Position()));
}

// OS/2 bitmaps of that kind have no run-length encoding. What was chosen for Windows ones stays.
void frmSaveOption::ShowRLEUse() {
    if (panel_ == Panel::kBMP) checkRLE_.SetEnabled(!optionBMPFileType_[1].IsChecked());
}

void frmSaveOption::FocusFirstControl() const {
    switch (panel_) {
        case Panel::kBMP:
            return optionBMPFileType_[optionBMPFileType_[1].IsChecked() ? 1 : 0].SetFocus();
        case Panel::kJPEG:
            return sliderJpegQuality_.SetFocus();
        case Panel::kPNG:
            return sliderPNGQuality_.SetFocus();
    }
}

void frmSaveOption::Dialog_OK() {
    TakeOptions();
    cancelled_ = false;
    Close(IDOK);
}

void frmSaveOption::Dialog_Cancel() {
    cancelled_ = true;
    Close(IDCANCEL);
}

}  // namespace tessary
