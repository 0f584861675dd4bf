// One page of the options dialog.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "ui/options/option_fields.h"
#include "ui/options/option_values.h"

namespace tessary {

// A page's controls belong to the dialog, which shows and enables those of one page at a time.
class OptionPage {
  public:
    OptionPage(const OptionPage&) = delete;
    OptionPage& operator=(const OptionPage&) = delete;
    virtual ~OptionPage() = default;

    // Takes over the page's controls when the dialog is loaded.
    void Load(HWND dialog) {
        dialog_ = dialog;
        fields_.SetDialog(dialog);
        AttachControls();
    }

    // Puts the values into the controls.
    virtual void ShowValues() { fields_.Show(); }

    // What is wrong with the values, for the user; empty when nothing is. The control where it can
    // be put right gets the focus.
    virtual std::wstring Fault() { return {}; }
    virtual void GoToFault() {}

    // Greys what means nothing with the present values. All of the page is enabled before.
    virtual void ShowState() {}

  protected:
    // `options` are edited in place; `changed` is told when they have been.
    OptionPage(OptionValues& options, std::function<void()> changed)
        : options_(options), changed_(changed), fields_(std::move(changed)) {}

    virtual void AttachControls() = 0;

    HWND Dialog() const { return dialog_; }
    OptionValues& Options() { return options_; }
    OptionFields& Fields() { return fields_; }
    void Changed() const { changed_(); }

  private:
    HWND dialog_ = nullptr;
    OptionValues& options_;
    std::function<void()> changed_;
    OptionFields fields_;
};

}  // namespace tessary
