// The commands around what is remembered: recent files, bookmarks, and going on where the user
// stopped.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "places/visit.h"
#include "ui/form/timer.h"
#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"
#include "ui/main/jump_list.h"

namespace tessary {

class PlaceCommands {
  public:
    // Registers them with the window's menu items and listens to what it shows. The window and the
    // bar must outlive this, and this the window's last message.
    PlaceCommands(frmMain& window, ControlBar& bar);
    PlaceCommands(const PlaceCommands&) = delete;
    PlaceCommands& operator=(const PlaceCommands&) = delete;
    // Remembers where the user is.
    ~PlaceCommands() { visits_.Keep(); }

    // Fills the lists of a menu that is about to be shown.
    void FillMenu(HMENU menu);

  private:
    // --- What happens ---
    bool OpenByHand(const std::vector<std::wstring>& paths, const std::function<bool()>& open);
    void PictureShown();
    void TellOffer();
    void OfferToDrop(const std::wstring& path);

    // --- The commands ---
    Place ShownPlace() const;
    void Open(const Place& place);
    void GoOn();
    void ToggleBookmark();
    void AskToForget();
    void Forget();
    void MemoryChanged();

    frmMain& window_;
    ControlBar& bar_;
    Visits visits_;
    Place lastRun_;                     // what the run before this one has shown last
    std::vector<std::wstring> recent_;  // as the menu shows them
    std::vector<Place> bookmarks_;
    Timer rest_;
    JumpList jumpList_;
};

}  // namespace tessary
