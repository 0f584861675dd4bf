// The main window: menus, the picture and the status bar.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/base/call_user.h"
#include "app/base/command_line.h"
#include "picture/show/picture_view.h"
#include "picture/view/turned_picture.h"
#include "plugin/call_watch.h"
#include "plugin/file_stamp.h"
#include "res/resource.h"
#include "ui/form/accelerators.h"
#include "ui/form/activity.h"
#include "ui/form/file_drop_target.h"
#include "ui/form/form.h"
#include "ui/form/message_loop.h"
#include "ui/form/picture_box.h"
#include "ui/form/status_bar.h"
#include "ui/form/taskbar_progress.h"
#include "ui/main/command_table.h"
#include "ui/main/control_bar.h"
#include "ui/main/edge_peek.h"
#include "ui/main/frame_show.h"
#include "ui/main/full_screen.h"
#include "ui/main/info_pane.h"
#include "ui/main/modWindowProc.h"
#include "ui/main/picture_popup.h"
#include "ui/main/picture_stage.h"
#include "ui/main/resting_pointer.h"
#include "ui/main/silence_bar.h"
#include "ui/main/start_hint.h"

namespace tessary {

// What the main window is given when it is made.
struct MainWindowServices {
    std::vector<std::wstring> commandLine;  // full paths of files and folders to open
    std::function<int()> pluginCount;       // of the plug-ins loaded now
    std::function<void()> endProgram;  // saves settings, frees plug-ins; the window is gone by then
    int showCommand = SW_SHOWNORMAL;   // how a shortcut wants it shown (SW_…)
    FrameReaderMaker frameReaders{};   // for animations; empty: none is played
    std::function<bool()> pluginsAreComing{};  // some are still to be asked; empty: none
};

class frmMain final : public Form, public PictureView {
  public:
    explicit frmMain(MainWindowServices services);
    ~frmMain() = default;

    // The control bar takes file lists and player commands from now on; it must outlive the window.
    // Until it is known files are ignored, so it comes before Load, and their menu items are grey.
    void SetControlBar(ControlBar& controlBar);

    // The menu items' commands, open to whoever brings a feature.
    CommandTable& Commands() { return commands_; }

    // Puts the number of loaded plug-ins into the status bar.
    void ShowPluginCount();

    // Whether plug-ins are still to be asked what they can do: till then nobody knows which files
    // are pictures or archives.
    bool ArePluginsComing() const {
        return services_.pluginsAreComing && services_.pluginsAreComing();
    }

    // Tells where the picture comes from that was put into the view; forgotten when the view is
    // emptied. The number of plug-ins comes back to the status bar where another text has taken its
    // place.
    void SetPictureSource(PictureSource source);
    const PictureSource& Source() const { return source_; }
    void OnPictureSource(std::function<void()> told) { sourceTold_ = std::move(told); }
    // Of its file, when it was shown; nothing where there is none.
    const std::optional<FileStamp>& SourceStamp() const { return sourceStamp_; }

    // The path of the file that has exactly the picture that is seen, also when it was turned, an
    // archive's member or pasted: then empty.
    std::wstring ShownFile() const;

    // How the picture was turned since it came, as EXIF counts it.
    uint16_t Orientation() const { return orientation_; }
    // What is seen was written to this file: shows it once more, in its place.
    void ShowAnew(const std::wstring& path);

    // Whether a picture is shown. The handler is told when that changes, or Frames().
    bool PictureShown() const { return stage_.HasPicture(); }
    void OnPictureShownChanged(std::function<void()> handler) {
        pictureShownChanged_ = std::move(handler);
    }

    // Told when the user begins to drag the picture away: by the left button, with Ctrl where the
    // picture would follow the pointer else. The button is still down.
    void OnPictureDragged(std::function<void()> handler) { pictureDragged_ = std::move(handler); }

    // Asked when the window is to be closed during a read. True refuses, and the user has been told
    // why; else the window closes behind the read.
    void OnCloseDuringRead(std::function<bool()> refuses) { refusesToClose_ = std::move(refuses); }

    // Shows the loaded window for the first time: maximised when it was left so, and maximised or
    // minimised where the one who starts the program wants that. Hidden it would be out of reach.
    void Show();

    // Divides the client area among the parts anew: one of them wants another size.
    void ArrangeParts();
    // Where the control bar would stand at that side, on the screen.
    RECT BarPlaceAt(DockSide side);
    bool IsFullScreen() const { return fullScreen_.IsOn(); }

    // Above which window a command shows its dialog: the one that it was given in, which may be the
    // control bar.
    HWND DialogOwner() const {
        const HWND window = WindowForMessages();
        return window != nullptr ? window : Handle();
    }

    // Closes the window when that was asked for during a read (quitRequested) and none is under way
    // any more. Posted: whoever has read may still be at work below.
    void CloseIfAsked() const;

    // For its own life something is being read or looked for: the user is told how far it is once
    // that takes long, and may stop it. Several within each other are one.
    class Reading {
      public:
        // `what` is done, as "読み込んでいます".
        Reading(frmMain& window, const wchar_t* what);
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
        ~Reading();

      private:
        bool TakesEscape(const MSG& message) const;

        frmMain& window_;
        ReadUnderWay underWay_;
        MessageFilter escape_;
        CallWatch calls_;
    };

    // Asks what is being read to stop; nothing when there is no Reading.
    void StopReading();
    // Whether there is a Reading. What the user asks for meanwhile waits for its end.
    bool IsReading() const { return reading_.depth > 0; }
    // Whether the Reading has taken so long that the user is told about it.
    bool IsReadingLong() const;

    // Moves the window down by so many pixels, as far as the screen has room for it.
    void MakeRoomAbove(int pixels);

    // Hands files to their receiver as soon as the messages that wait now are done. A folder
    // stands for the plain files directly in it. What is being loaded ends before.
    void OpenLater(const std::vector<std::wstring>& paths);

    // What the user opens by hand goes through `by`, if there is one, which calls `open` and
    // answers what that does.
    using Opening = std::function<bool(const std::vector<std::wstring>& paths,
                                       const std::function<bool()>& open)>;
    void OnOpenByHand(Opening by) { openByHand_ = std::move(by); }
    bool OpenByHand(const std::vector<std::wstring>& paths,
                    const std::function<bool()>& open) const {
        return openByHand_ ? openByHand_(paths, open) : open();
    }
    // Told when the one path that was to be opened leads nowhere.
    void OnMissing(std::function<void(const std::wstring& path)> told) {
        missing_ = std::move(told);
    }

    // Told when the program has given a file another path.
    void OnFileMoved(
        std::function<void(const std::wstring& path, const std::wstring& newPath)> told) {
        fileMoved_ = std::move(told);
    }
    void TellMoved(const std::wstring& path, const std::wstring& newPath) const {
        if (fileMoved_) fileMoved_(path, newPath);
    }

    // Tells in the status bar when what was to be opened holds no file (`count` is 0), or some of
    // it is missing or could not be read; takes back what the last opening told, from the second
    // one on also what the start has.
    void ShowOpened(size_t count, const NamedFiles& named = {});

    // Tells in a message box why the one file could not be shown that the user has opened by hand;
    // nothing for an empty text.
    void TellFailure(const std::wstring& failure) const;

    // Shows a short text upon the picture for a moment.
    void ShowNote(const std::wstring& note) { pictureView_.ShowNote(note); }

    // Where the user is among his files, as "name — 12 / 300"; empty: nothing of them is shown. The
    // title has it, where the user wants that, and on the full screen it is there for a moment.
    void TellPlace(const std::wstring& place);
    // Makes the title anew, as the user wants it now.
    void ShowTitle() const;

    // What is in the view now, or nothing, comes from no file of the control bar's: tells the bar,
    // and in the place of the shown file the picture's size and the number of plug-ins, whose own
    // place has another text then.
    void ShowForeignPicture(const std::wstring& info);

    // Tells the control bar that a picture was saved in that file.
    void TellSaved(const std::wstring& path) {
        if (controlBar_ != nullptr) controlBar_->FileSaved(path);
    }

    // Arrow keys scroll; Enter steps forward, Shift+Enter back; Tab goes to the control bar.
    // `shift` is a sum of kShiftMask …. The control bar passes its own keys on to this.
    void pictureView_KeyDown(int keyCode, int shift);

    // Steps by the mouse buttons beside the thumb (WM_XBUTTON…), over whichever of the windows;
    // true when the message is about one.
    bool TakesSideButton(const MSG& message);

    // The next picture is seen from its lower end on.
    void ArriveAtBottom(bool does) { arrivesAtBottom_ = does; }

    // Makes the window the active one, with the keyboard at the picture.
    void TakeFocus() { SetFocus(pictureView_.Handle()); }

    const PictureBox& pictureView() const { return pictureView_; }
    // What is seen of the picture.
    const PictureStage& Stage() const { return stage_; }
    // The animation that it is of.
    FrameShow& Frames() { return frames_; }

    // The user has chosen another display size mode: what is shown takes it at once.
    void FollowSizeMode();
    // What is mixed where pictures are resized may have been chosen anew.
    void FollowLight();
    const StatusBar& statusInformation() const { return statusInformation_; }
    const InfoPane& Info() const { return info_; }
    const StartHint& Hint() const { return hint_; }

    // PictureView
    SightRoom Room() const override;
    void SetPicture(Picture picture, const Picture& prepared) override;
    void SetAnimation(const Animation& animation) override { frames_.Set(animation); }
    void ClearPicture() override;
    void ShowReason(const std::wstring& reason) override;
    void SetPanelText(int panel, const std::wstring& text) override;
    bool Breathe() override;
    // Of a Reading. Whether the user steps on, and what he says to a plug-in that does not answer.
    CallWish AwaitsCall(const WaitedCall& call) override;
    void TellProgress(int done, int total) override;  // of a Reading
    void TellFetching(int done, int total) override;  // the same
    bool AwaitsFile() const override;

  private:
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;
    void Form_Unload() override;
    void Form_Terminate() override;
    void Form_Resize(int width, int height) override;
    void Form_MetricsChanged() override;
    void Form_MenuOpen() override { commands_.ShowState(GetMenu(Handle())); }
    void Form_Command(int id) override { commands_.Run(id); }
    SIZE MinimumSize() const override;

    std::wstring PluginCountText() const;
    void PlaceWindow();
    void SavePlacement() const;
    void CreateControls();
    void RegisterCommands();
    std::optional<LRESULT> OnSystemMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void EndSession();

    // --- What is to be opened (frmMain_open.cpp) ---
    // Posted to the window itself: there are files to open.
    static constexpr UINT kOpenFilesMessage = WM_APP + 1;
    // The same: whether the empty view tells how to begin is to be asked.
    static constexpr UINT kHintMessage = WM_APP + 2;
    // Finds the files; may take long, and runs beside the user-interface thread.
    struct FoundFiles {
        std::vector<ListedFile> files;
        NamedFiles named;
        ListSource source = ListSource::kFiles;
    };
    void AcceptDroppedFiles();
    void OpenCommandLine();
    void OpenNow(const std::vector<std::wstring>& paths);

    // --- The full screen and the stepping keys (frmMain_full_screen.cpp) ---
    void RegisterFullScreenCommands();
    void RegisterStepCommands();
    void Escape();
    void SetFullScreen(bool on);
    void NotePlace();
    void ScreenChanged();
    // Whether the control bar and those who bring files are heard now.
    bool MayPress() const;
    void Step(BarButton button);
    void ReadOn(bool back);

    // --- The parts (frmMain_layout.cpp) ---
    ClientAreas Areas(SIZE client, DockSide side);
    bool CallsBar(POINT onScreen) const;
    bool IsOverBar(POINT onScreen) const;
    void GoToOtherWindow();
    void GoToNextPart();
    void TakeFocusBack();
    void CreateHint();
    void FollowEmptiness();
    void ShowHintOrNot();

    // --- Long reads (frmMain_reading.cpp) ---
    void TellReading(const wchar_t* what, int done, int total);
    Urge UrgeForElse() const;
    CallWish AskAboutSilence(const WaitedCall& call);
    // Whether there is a Reading that was not asked to stop long ago, without hearing of it.
    bool TakesStop() const;
    // The one read under way.
    struct ReadState {
        int depth = 0;  // how many Reading there are
        const wchar_t* what = nullptr;
        DWORD start = 0;  // tick count, milliseconds
        bool stopped = false;
        DWORD stop = 0;                            // when it was stopped; tick count, milliseconds
        std::optional<std::wstring> covered;       // the notice that its news stand in place of
        std::unique_ptr<TaskbarProgress> taskbar;  // there once it takes long
        int percent = -1;                          // that the taskbar shows
    };

    void menuEditClear_Click();
    void menuPopup_Click(int item);

    // --- The picture and what moves it (frmMain_viewing.cpp) ---
    void CreatePictureView();
    void RegisterViewCommands();
    void RoomChanged();
    void TurnPicture(Turn turn);
    void RegisterBackdropCommands();
    void RegisterFrameCommands();
    void StepFrame(int frames);
    bool MaySeeFrames() const;
    void ShowFrame(PlayedFrame frame, bool isInMotion);
    void SetBackdrop(int16_t backdrop);
    void ShowScale();
    void ShowInfo(bool on);
    bool TurnsPage(int keyCode);
    void pictureView_Wheel(int notches, int shift, POINT at);
    void pictureView_DoubleClick(POINT at);
    void pictureView_MouseDown(int button, POINT at);
    void pictureView_MouseMove(POINT at, bool leftButton);
    void pictureView_MouseUp();
    void pictureView_ContextMenu(POINT onScreen);
    const wchar_t* pictureView_Pointer() const;
    void PutIntoView(Picture picture, const Picture& prepared);

    MainWindowServices services_;
    ControlBar* controlBar_ = nullptr;
    CommandTable commands_;
    PictureBox pictureView_;
    PictureStage stage_{pictureView_};
    FrameShow frames_;
    StatusBar statusInformation_;
    SilenceBar silence_;
    InfoPane info_;
    StartHint hint_;
    bool hintDue_ = false;  // whether it belongs there was posted to be asked
    FullScreen fullScreen_;
    RestingPointer restingPointer_;
    EdgePeek barPeek_{{.calls = [this](POINT at) { return CallsBar(at); },
                       .holds = [this](POINT at) { return IsOverBar(at); },
                       .show = [this](bool isShown) { controlBar_->SetVisible(isShown); }}};
    bool barComesBack_ = false;  // behind the full screen
    bool backToBar_ = false;     // the keyboard was in the docked bar when it left the window
    bool startsMaximized_ = false;
    PictureSource source_;
    std::optional<FileStamp> sourceStamp_;
    uint16_t orientation_ = exif::kUpright;
    bool arrivesAtBottom_ = false;
    std::optional<ViewPosition> keptPlace_;  // of the next picture, and so is the zoom
    std::function<void()> pictureShownChanged_;
    std::function<void()> pictureDragged_;
    std::optional<POINT> pressedAt_;  // where the picture may be dragged away from
    std::function<bool()> refusesToClose_;
    std::function<void()> sourceTold_;
    Opening openByHand_;
    std::function<void(const std::wstring&)> missing_;
    std::function<void(const std::wstring&, const std::wstring&)> fileMoved_;
    std::vector<std::wstring> filesToOpen_;
    std::wstring place_;       // what TellPlace has told
    std::wstring placeNote_;   // the same, as it was put upon the picture
    std::wstring openNotice_;  // what the last opening told in the status bar
    bool hasOpened_ = false;
    bool isOpening_ = false;
    Accelerators accelerators_;
    MessageFilter sideButtons_{[this](const MSG& message) {
        return GetAncestor(message.hwnd, GA_ROOT) == Handle() && TakesSideButton(message);
    }};
    // Over whichever part of the window.
    MessageFilter pointerMoves_{[this](const MSG& message) {
        const bool isHeld = (message.wParam & (MK_LBUTTON | MK_RBUTTON | MK_MBUTTON)) != 0;
        if (message.message == WM_MOUSEMOVE && fullScreen_.IsOn() && !isHeld &&
            GetAncestor(message.hwnd, GA_ROOT) == Handle()) {
            barPeek_.PointerMoved();
        }
        return false;
    }};
    DWORD lastBreath_ = 0;  // tick count, milliseconds
    ReadState reading_;
    // Last, so that they let go of the windows first.
    WindowProcedureHook hook_;
    FileDropTarget windowDrop_;
    FileDropTarget viewDrop_;
};

}  // namespace tessary
