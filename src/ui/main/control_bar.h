// What the main window needs of the control bar, which goes through files.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "picture/read/listed_file.h"
#include "places/place.h"
#include "ui/main/client_areas.h"
#include "ui/main/picture_popup.h"

namespace tessary {

// Buttons of the control bar's toolbar, as the toolbar counts them.
enum class BarButton {
    kRewind = 1,
    kReversePlay = 2,
    kStepBack = 3,
    kStop = 4,
    kStepForward = 5,
    kPlay = 6,
    kFastForward = 7,
    kDisplaySize = 9,
    kOpen = 11,
    kSave = 12,
    kDeleteList = 14,
    kFold = 15,
    kCancelDelete = 16,
    kPauseFrames = 18,
};

// Where the keyboard comes to in the control bar: where it was last, or at an end of its parts.
enum class BarFocus { kFormer, kFirst, kLast };

// How much the user wants something else than what is being loaded.
enum class Urge {
    kNone,
    kSome,    // he holds a key down, or has asked for something that is done behind the load
    kStrong,  // he has just asked for something else
};

// One of an archive's, as the plug-in's list counts it.
struct ShownMember {
    std::wstring archive;  // full path
    int32_t position = 0;
    std::wstring name;
};

// Where the next page of an open book lies; none where nothing is read as a book.
enum class PageSide { kNone, kLeft, kRight };

// What the user has opened.
enum class ListSource { kFiles, kOneFile, kOneFolder };

class ControlBar {
  public:
    // Replaces the list of files being viewed and shows the first; false when nothing was added.
    virtual bool SetFileList(std::span<const std::wstring> files) = 0;

    // The same with files that are in order already. One that is opened alone brings those of its
    // folder along, if the user wants it so; they come into the list behind it. A list of one
    // folder follows what becomes of that.
    virtual bool OpenFiles(std::vector<ListedFile> files, ListSource source) = 0;

    // Shows a place of the list; false when its file is not listed, or something is being loaded.
    virtual bool GoTo(const Place& /*place*/) { return false; }
    // The next list begins at that place, if it is in there.
    virtual void BeginAt(const Place& /*place*/) {}

    // Why the file that was shown last could not be shown, for a message box; empty when it could,
    // and during a show, which nothing may stop.
    virtual std::wstring Failure() const = 0;

    // None of the files is chosen any more; false when none was.
    virtual bool ForgetChosen() { return false; }

    // Empties the lists of files and of archive members.
    virtual void ClearLists() = 0;

    // The full paths of the files being viewed, in the order of their list.
    virtual std::vector<std::wstring> FileList() const = 0;
    virtual bool HasFiles() const = 0;

    // Told that the view has something else than the selected file now: its name, or nothing.
    virtual void PictureReplaced(const std::wstring& info) = 0;

    // Told that the file that is shown has turned out to be damaged.
    virtual void PictureIsDamaged() {}

    // Told that a picture was saved in that file.
    virtual void FileSaved(const std::wstring& path) = 0;

    // Shows the file once more if it is the selected one; false when it is not.
    virtual bool ShowAnew(const std::wstring& /*path*/) { return false; }

    // The selected member, if that is what the source tells of.
    virtual std::optional<ShownMember> MemberOf(const PictureSource& /*source*/) const {
        return std::nullopt;
    }

    // Whether what is selected has pages; shows another one of them, so many further on, the first
    // or the last where there are not as many.
    virtual bool HasPages() const { return false; }
    virtual void StepPage(int /*pages*/) {}

    virtual PageSide NextPageSide() const { return PageSide::kNone; }

    // Does what a click on the button does.
    virtual void Press(BarButton button) = 0;

    // Whether a slide show or another motion runs.
    virtual bool IsPlaying() const = 0;

    // Has what runs stand still, or go on; whether it stands still.
    virtual void PauseMotion() {}
    virtual bool IsPaused() const { return false; }

    // Steps back; what is higher than the view arrives with its lower end.
    virtual void StepBackToBottom() { Press(BarButton::kStepBack); }

    // Runs a command of the main window at the end of what is being loaded, unless the user wants
    // something else by then.
    virtual void WishCommand(int command) = 0;

    // Whether the user waits for the file that is being shown: neither does a fast motion only pass
    // it, nor has he asked for another one meanwhile.
    virtual bool AwaitsFile() const { return true; }
    virtual Urge UrgeForElse() const { return Urge::kNone; }

    virtual bool IsVisible() const = 0;
    virtual void SetVisible(bool visible) = 0;

    // There are files to be shown: a floating bar comes in sight.
    virtual void ComeUp() { SetVisible(true); }

    // The same as the user's own wish, which lasts.
    virtual void ShowForUser(bool visible) { SetVisible(visible); }

    // --- Docked at a side of the main window; of a bar that never is, as it stands here ---
    virtual DockSide Side() const { return DockSide::kFloating; }
    // How thick it wants to be at a side of so much room, in pixels.
    virtual int DockedExtent(DockSide /*side*/, SIZE /*room*/) { return 0; }
    // Puts it into this rectangle of the main window.
    virtual void PlaceDocked(const RECT& /*place*/) {}
    // Resolution, fonts or colours of the main window have changed.
    virtual void MainMetricsChanged() {}
    // Whether it is docked and the window is one of its parts, or itself.
    virtual bool Holds(HWND /*window*/) const { return false; }
    // The main window is no longer the active one: whether the docked bar has the keyboard, which
    // comes back to the same part by BarFocus::kFormer.
    virtual bool NoteFocus() { return false; }
    // Gives the keyboard to the next (or former) of its lists and buttons, from elsewhere to the
    // first (or last); false behind the last one.
    virtual bool FocusNextPart(bool /*back*/) { return false; }
    // Whether Esc, where the keyboard is, leads back to the picture.
    virtual bool TakesEscape() const { return false; }

    // Makes the window the active one, with the keyboard there. Nothing while it is not visible.
    virtual void TakeFocus(BarFocus focus) = 0;

    // Asked before the program ends; may ask the user. False: it goes on.
    virtual bool MayClose() = 0;

    // Saves position and fold state; nothing when the window is not loaded.
    virtual void SavePlace() = 0;

    // Closes the window, which saves its position and fold state. May come when it is not loaded.
    virtual void Unload() = 0;

  protected:
    ~ControlBar() = default;
};

}  // namespace tessary
