// The dialog that edits how files of one format are saved.
#pragma once

#include <deque>

#include "app/settings/saver_format.h"
#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"
#include "ui/form/slider.h"

namespace tessary {

// The panel follows from the options of the format's row: frames of option buttons and sliders
// above, check boxes below, at last those that hold for all formats.
class frmSaveOption final : private Dialog {
  public:
    frmSaveOption();

    // Shows the panel of a format with what `options` has for it, over `owner`. True after OK:
    // `options` then has what the user has chosen. After Cancel it is as it was. A value between
    // two positions of its slider comes back as the lower one.
    bool Edit(HWND owner, const SaverFormat& format, saving::SaveOptions& options);

  private:
    // An option with the controls that its kind has.
    struct Field {
        explicit Field(const SaverOption& of) : option(of) {}

        const SaverOption& option;
        std::deque<Button> buttons{};  // a check box, or the option buttons
        Slider slider{};
        Label value{};  // what the slider stands at

        int16_t Value() const;
        void Show(int16_t shown);
    };

    void Dialog_Load() override;
    void Dialog_OK() override;
    void MakePanel();
    // Makes the dialog higher where the template's panel does not do.
    void MakeRoom() const;
    void MakeChoice(Field& field);
    void MakeLevel(Field& field);
    void MakeSwitch(Field& field);
    // A control of the panel behind those that are there, in the order of Tab too; the place is in
    // units of the dialog. Its number.
    int Make(const wchar_t* className, const wchar_t* caption, DWORD style, int left, int top,
             int width, int height);
    Button& MakeButton(Field& field, const wchar_t* caption, DWORD style, int left, int top,
                       int width);
    void ShowUse();
    void FocusFirstControl() const;

    const SaverFormat* format_ = nullptr;
    saving::SaveOptions* options_ = nullptr;
    std::deque<Field> fields_;  // as they follow in the panel
    int top_ = 0;               // where the panel goes on
    int nextId_ = 0;
    HWND last_ = nullptr;  // control made
};

}  // namespace tessary
