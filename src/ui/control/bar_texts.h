// What the control bar and the main window's status bar say of what is shown, or being loaded.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "ui/form/form.h"
#include "ui/form/simple_controls.h"
#include "ui/form/timer.h"
#include "ui/main/frmMain.h"

namespace tessary {

class BarTexts {
  public:
    // All must outlive this. `late`: what was held back is being told, for a load of a burst takes
    // so long that somebody may read it.
    BarTexts(const Form& bar, TextBox& info, frmMain& window, std::function<void()> late);

    // In the bar's information; in the status bar; the same in both.
    void TellInfo(const std::wstring& text);
    void TellShown(const std::wstring& text);
    void TellNotShown(const std::wstring& text);
    // What the information says, or will.
    std::wstring Info() const;

    // What is being loaded is painted at once; what comes next is told behind it.
    void TellLoading(const std::wstring& text);
    void TellNext(const std::wstring& next);
    void EndLoading() { loading_.clear(); }

    // While loads follow each other too fast to be read, only the last text counts.
    void Hold() { held_ = true; }
    void Release();

  private:
    void TellLate();

    const Form& bar_;
    TextBox& info_;
    frmMain& window_;
    std::function<void()> late_;
    std::wstring loading_;
    bool held_ = false;
    std::optional<std::wstring> lateInfo_;
    std::optional<std::wstring> lateShown_;
    Timer longLoad_;
};

}  // namespace tessary
