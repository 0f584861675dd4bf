// What is known of the shown picture, as text beside it.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/metadata_host.h"
#include "picture/metadata/info_lines.h"
#include "ui/form/control.h"
#include "ui/form/metrics.h"
#include "ui/form/timer.h"
#include "ui/form/worker.h"

namespace tessary {

// Lines of text to be read, selected and copied.
class InfoText final : public Control {
  public:
    bool Create(HWND parent) {
        return CreateChild(
            parent, L"EDIT",
            WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL | ES_NOHIDESEL,
            WS_EX_CLIENTEDGE);
    }
    // Without flicker; nothing when it is what is there.
    void Show(const std::wstring& text);
    // Where the values begin, in dialog units.
    void SetTab(DWORD units) { Send(EM_SETTABSTOPS, 1, reinterpret_cast<LPARAM>(&units)); }

  private:
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
};

// A pane at the right side of a window. It takes the keyboard only where the user clicks into it,
// and is filled when he rests at a picture; the file is read beside the user-interface thread.
class InfoPane {
  public:
    // Closed at first; the control belongs to the window. `changed` is told when it has come or
    // gone: the window is to be laid out anew. `leave` is asked to take the keyboard further, or
    // back to the picture.
    void Create(HWND window, std::function<void()> changed, std::function<void(bool back)> leave);
    void ChangeMetrics();

    void SetOpen(bool isOpen);
    bool IsOpen() const { return isOpen_; }

    // The current picture is another one, or there is none.
    void PictureChanged();
    // Nothing more is asked for.
    void Stop();

    // The width that it wants, in pixels; 0 when it is closed.
    int Width() const;
    // Puts it into this rectangle of its window.
    void Layout(const RECT& place);

    // Gives it the keyboard; false when it is closed.
    bool TakeFocus() const;
    bool HasFocus() const { return text_.HasFocus(); }
    // Whether it has the keyboard and a use of its own for the key (VK_…).
    bool TakesKey(WPARAM key) const;
    bool Holds(HWND control) const { return control != nullptr && control == text_.Handle(); }

    std::wstring Text() const { return text_.Text(); }

  private:
    struct Asked {
        std::shared_ptr<const PictureOrigin> origin;
        std::shared_ptr<MetadataAnswer> answer;  // belongs to the thread until that has ended
        std::unique_ptr<Worker> worker;
    };

    void Tick();
    void Fill();
    void Ask(const std::shared_ptr<const PictureOrigin>& origin);
    void TakeAnswer();

    std::function<void()> changed_;
    std::function<void(bool)> leave_;
    HWND window_ = nullptr;
    UniqueFont font_;
    InfoText text_;
    bool isOpen_ = false;
    bool isStale_ = true;       // the text is not the current picture's
    ULONGLONG staleSince_ = 0;  // the moment, by GetTickCount64
    Asked asked_;
    // What was told last, and of what.
    std::shared_ptr<const PictureOrigin> toldOf_;
    std::vector<InfoLine> told_;
    int rests_ = 0;  // ticks without anything to do
    Timer timer_{[this] { Tick(); }};
};

}  // namespace tessary
