// The stretches of time in which the control bar takes nothing from the user.
#pragma once

#include <optional>

#include "ui/control/frmControl.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/redraw_hold.h"

namespace tessary {

// A time in which one list is being filled, or one picture loaded or looked for: the lists and the
// player's buttons are disabled, and the focus comes back in the end.
class frmControl::Busy {
  public:
    Busy(frmControl& bar, const wchar_t* what);
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy();

  private:
    frmControl& bar_;
    HWND focused_;
    std::optional<frmMain::Reading> reading_;
    std::optional<BusyPointer> pointer_;  // none while playing: it would flicker
};

// Loads that follow each other so fast that nobody could read what the bar says between them: it is
// disabled once and painted once.
class frmControl::Burst {
  public:
    explicit Burst(frmControl& bar);
    Burst(const Burst&) = delete;
    Burst& operator=(const Burst&) = delete;
    ~Burst();

    // Paints the lists as they are: a load takes long, and they would seem to be empty.
    void ShowLists();

  private:
    frmControl& bar_;
    HWND focused_;
    std::optional<RedrawHold> files_;
    std::optional<RedrawHold> members_;
};

// A search for the next file of known kind, which the user is told of once it takes long. He stops
// it, or chooses a file himself. The bar is busy from the first file on that is looked at.
class frmControl::Search final : public KindSource {
  public:
    explicit Search(frmControl& bar) : bar_(bar), stops_(bar.stops_) {}
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search() { End(); }

    // KindSource
    bool IsKnown(const std::wstring& path) override;
    bool IsArchive(const std::wstring& path) override {
        return LookAtName(path).kind == kFileArchive;
    }
    bool GoesOn(int index, int done, int total) override;

    // The bar is busy no more.
    void End();
    // Hears what was asked for meanwhile, where no file had to be looked at.
    void Hear();
    // Whether the user wants something else than what is searched for; he is heard to the end.
    bool IsOverruled() const { return hasBegun_ && Overrules(); }

  private:
    bool Overrules() const { return bar_.wishes_.file || stops_ != bar_.stops_; }

    frmControl& bar_;
    int stops_;
    bool hasBegun_ = false;
    std::optional<Busy> busy_;
    std::optional<std::wstring> former_;  // what its news stand in place of
    DWORD begin_ = 0;                     // tick count, milliseconds
};

}  // namespace tessary
