// The dialog that edits how files of one format are saved.
#pragma once

#include "helpers/saving/save_options.h"
#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"
#include "ui/form/slider.h"

namespace tessary {

class frmSaveOption final : private Dialog {
  public:
    frmSaveOption();

    // Each shows the panel of one format with what `options` has, over `owner`. True after OK:
    // `options` then has what the user has chosen. After Cancel it is as it was.
    bool EditBMP(HWND owner, saving::BmpSaveOptions& options);
    // The quality goes in steps of ten: one between them comes back as the step below.
    bool EditJPEG(HWND owner, saving::JpegSaveOptions& options);
    bool EditPNG(HWND owner, saving::PngSaveOptions& options);

  private:
    enum class Panel { kBMP, kJPEG, kPNG };

    bool Edit(HWND owner, Panel panel);
    void Dialog_Load() override;
    void Dialog_OK() override;
    void Dialog_Cancel() override;
    void AttachControls();
    void ShowPanel();
    void PutOptions();
    void TakeOptions();
    void ShowValues();
    void ShowRLEUse();
    void FocusFirstControl() const;

    Panel panel_ = Panel::kBMP;
    bool cancelled_ = true;
    saving::BmpSaveOptions bmp_;
    saving::JpegSaveOptions jpeg_;
    saving::PngSaveOptions png_;

    Button optionBMPFileType_[2];
    Button checkRLE_;
    Slider sliderJpegQuality_;
    Label valueJpegQuality_;
    Button checkJPEGOptimize_;
    Button checkJPEGProgressive_;
    Slider sliderPNGQuality_;
    Label valuePNGQuality_;
    Button checkPNGInterless_;
};

}  // namespace tessary
