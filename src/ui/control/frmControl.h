// The control bar: the list of files being viewed, the members of the archive among them, the
// player's buttons and the delete list.
//
// The window has no caption: it is dragged by its body and folds up to its toolbar. What it shows
// is a FileSequence; its lists mirror that.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "picture/show/member_list.h"
#include "picture/show/modShowPicture.h"
#include "places/book_choice.h"
#include "sequence/file_sequence.h"
#include "sequence/random_way.h"
#include "ui/control/bar_dock.h"
#include "ui/control/bar_layout.h"
#include "ui/control/bar_place.h"
#include "ui/control/bar_texts.h"
#include "ui/control/delete_list.h"
#include "ui/control/delete_panel.h"
#include "ui/control/dock_frame.h"
#include "ui/control/file_history.h"
#include "ui/control/file_transfer.h"
#include "ui/control/folder_follower.h"
#include "ui/control/place_slider.h"
#include "ui/control/player.h"
#include "ui/control/shown_lists.h"
#include "ui/control/toolbar_images.h"
#include "ui/control/wishes.h"
#include "ui/form/accelerators.h"
#include "ui/form/form.h"
#include "ui/form/simple_controls.h"
#include "ui/form/splitter.h"
#include "ui/form/timer.h"
#include "ui/form/toolbar.h"
#include "ui/form/virtual_list.h"
#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"

namespace tessary {

class frmControl final : public Form, public ControlBar, public MemberList, private DeleteListHost {
  public:
    // The main window shows the pictures, owns the loaded bar and must outlive it.
    explicit frmControl(frmMain& window);
    ~frmControl() = default;

    // Folded up to the toolbar. Setting it folds or unfolds; while files are being collected for
    // deletion the window stays tall.
    bool IsRollUp() const { return place_.IsRollUp(); }
    void SetRollUp(bool rollUp) { place_.SetRollUp(rollUp); }

    // Loads the window if need be. The list takes the entries that are not empty, with an index up
    // to 32001 where the user wants it so (`ShortList`). False also while another list is being
    // filled or a picture loaded.
    bool SetFileList(std::span<const std::wstring> files) override;
    bool OpenFiles(std::vector<ListedFile> files, ListSource source) override;

    bool GoTo(const Place& place) override;
    void BeginAt(const Place& place) override { startAt_ = place; }

    // Selects the entry before or behind: of the archive's members first, then of the files,
    // leaving out those of unknown kind. False when the selection has not moved there.
    bool ListIndexBackOne() { return MoveBy(-1, sequence_.IsInArchive()); }
    bool ListIndexForwardOne() { return MoveBy(1, sequence_.IsInArchive()); }

    // What a click on the toolbar's button does; a disabled button does nothing.
    void CoolBar_ButtonClick(BarButton button);

    // Whether the window is loaded.
    bool boolFormLoaded() const { return formLoaded_; }

    // Docks it at a side of the main window, or lets it float, at this place on the screen if one
    // is given; it is in sight then. Nothing on the full screen.
    void SetSide(DockSide side, std::optional<POINT> at = std::nullopt);

    // ControlBar
    std::wstring Failure() const override;
    bool ForgetChosen() override { return sequence_.ForgetChosen(); }
    void PictureReplaced(const std::wstring& info) override;
    void PictureIsDamaged() override;
    void FileSaved(const std::wstring& path) override {
        sequence_.FileWritten(path);
        deleteList_.FileSaved(path);
    }
    std::optional<ShownMember> MemberOf(const PictureSource& source) const override;
    bool ShowAnew(const std::wstring& path) override;
    void ClearLists() override;
    std::vector<std::wstring> FileList() const override { return sequence_.Files().Texts(); }
    bool IsPlaying() const override { return player_.IsPlaying(); }
    void PauseMotion() override;
    bool IsPaused() const override { return player_.IsPaused(); }
    void StepBackToBottom() override;
    void WishCommand(int command) override;
    bool AwaitsFile() const override;
    Urge UrgeForElse() const override;
    bool HasFiles() const override { return !sequence_.Files().IsEmpty(); }
    bool HasPages() const override {
        return sequence_.HasPages() || (sequence_.IsInArchive() && memberPages_ > 0);
    }
    void StepPage(int pages) override;
    PageSide NextPageSide() const override;
    void Press(BarButton button) override { CoolBar_ButtonClick(button); }
    bool IsVisible() const override;
    void SetVisible(bool visible) override;
    void ShowForUser(bool visible) override;
    DockSide Side() const override { return dock_.Side(); }
    int DockedExtent(DockSide side, SIZE room) override;
    void PlaceDocked(const RECT& place) override;
    void MainMetricsChanged() override;
    bool Holds(HWND window) const override;
    bool NoteFocus() override;
    bool FocusNextPart(bool back) override;
    bool TakesEscape() const override;
    void TakeFocus(BarFocus focus) override;
    bool MayClose() override { return deleteList_.MayClose(); }
    void SavePlace() override;
    void Unload() override;

    // MemberList
    void SetMembers(std::span<const ListedMember> members) override;

    const VirtualList& listFileName() const { return listFileName_; }
    const VirtualList& listArchiveFile() const { return listArchiveFile_; }
    const ListBox& listDelete() const { return deletePanel_.List(); }
    const TextBox& textFileInfo() const { return textFileInfo_; }
    const Slider& sliderPlace() const { return placeSlider_.Window(); }
    const Toolbar& CoolBar() const { return coolBar_; }
    // Whether a click on the button does something now.
    bool IsUsable(BarButton button) const;
    BarButton PlayMode() const { return player_.PlayMode(); }

  private:
    class Busy;
    class Burst;
    class Search;

    // --- The window (frmControl.cpp) ---
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;
    void Form_Unload() override;
    void Form_Resize(int width, int height) override;
    void Form_MetricsChanged() override;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void CreateControls();
    void Arrange();
    void Layout();
    void PaintBackground(HDC context) const override;
    LRESULT HitTest(LPARAM onScreen) const;
    void RegisterCommands();
    void ShowFoldedOrNot();

    // --- As a part of the main window (frmControl_dock.cpp) ---
    void RegisterDockCommands();
    BarState State() const;
    bool IsOwn(HWND window) const;
    void ComeUp() override;
    void ShowDocked(bool visible);
    bool IsAtGrip() const;
    void DragByBody();
    void DragByGrip(POINT at);
    void ShowWhereItDocks(const RECT& dragged);
    void DockWhereShown();
    void ShowBarMenu(POINT onScreen) const;
    void EdgeDragged(int place);
    void BorderDragged(int place);
    void FollowMembers();

    // --- Its keys and focus (frmControl_keys.cpp) ---
    bool PassKeyOn(int keyCode, int shift);
    bool IsKeyOfProgram(const MSG& key) const;
    bool TakesMessage(MSG& message);
    void MoveFocus(bool back);
    void FocusPart(HWND part);

    // --- The lists (frmControl_lists.cpp) ---
    bool ShowList(std::span<const ListedFile> files, size_t first, const std::wstring& folder = {});
    void FillFileList(std::span<const ListedFile> files);
    void listFileName_Click();
    void listArchiveFile_Click();
    void ShowListedFile(const std::wstring& path);
    void ShowListedMember(uint32_t page = 0);
    void ShowMemberPage(uint32_t page);
    void EnterPages(const std::wstring& path, uint32_t count);
    void ShowNoArchive();
    void ShowVanished(const std::wstring& path);
    void ShowEmptyList();
    ShownFile Show(const std::wstring& name, const std::function<ShownFile()>& show);
    void TellCut(size_t listed, size_t files);
    void DisableParts();
    void EnableParts(HWND focused);
    void EndLoad();

    // --- Choosing entries (frmControl_choosing.cpp) ---
    void RegisterChoosing();
    void SelectFileByHand(int index);
    void SelectMemberByHand(int index);
    void ChooseFiles(std::vector<int> indexes);
    void ChooseAll();
    void MarkAndGoOn();
    void TellChosen();
    void ShowListMenu(POINT place, bool isOfMembers);

    // --- Their small pictures (frmControl_thumbs.cpp) ---
    void RegisterLooks();
    void TakeLooks();
    void WantThumbs();
    void ShowThumbs();

    // --- Stepping, and what is asked for meanwhile (frmControl_wishes.cpp) ---
    bool MoveBy(int steps, bool inArchive);
    bool GoesAtRandom(int steps) const;
    StepTarget FindAtRandom(int steps, bool inArchive, Search& search);
    void StepAndStay(int steps, bool inArchive);
    void GoOnLater(int steps);
    bool IsLoading() const { return window_.IsReading(); }
    // Whether nobody can tell yet where a step leads to: neighbours, or those who know them, come.
    bool StepsWait() const { return follower_.AreComing() || window_.ArePluginsComing(); }
    bool LeadsElsewhere(int steps) const;
    void WishStep(int step);
    void WishMark();
    void WishIsThere();
    void CarryOutWishes();

    // --- Order, neighbours, ends (frmControl_order.cpp) ---
    void RegisterListCommands();
    EntryOrder ShownOrder() const;
    void ChooseOrder(const EntryOrder& order);
    AheadEntry ShownEntry() const;
    bool TakeFolder(std::vector<ListedFile>& files, int opened);
    void ReplaceFiles(std::vector<ListedFile> files, int opened);
    void ShowRenamed(int file);
    void GoToEnd(bool isLast);
    void SelectFile(int file, bool fromBehind);
    bool GoBeyondEnd(int steps, int16_t atEnd, bool isRandom);
    void TellEnd(int step);
    void TellRound(int step);
    bool GoToNextFolder(int step);
    bool BeginWithin(const Place& start, bool fromBehind);

    // --- Two pages at a time (frmControl_book.cpp) ---
    void RegisterBookCommands();
    void OpenAsBook(const std::wstring& container, bool isArchive);
    void BookChosen();
    void ShiftPages();
    void ShowSpreadAnew();
    LayOpen LayingOpen(int index);
    ReadToShow LaidOpen(int index, ReadToShow page);
    ReadToShow ReadPageBeside(int index);
    void TellNoPage(int index, bool isMember);
    bool IsSpread(int index) const { return sequence_.SpreadHere(index).count > 1; }

    // --- Where the user is (frmControl_place.cpp) ---
    void PlaceChanged();
    void TellPlace();
    void GoTo(const EntryPlace& place);

    // --- Reading ahead (frmControl_ahead.cpp) ---
    bool IsInMotion() const;
    void PlanAhead(const AheadEntry& shown);

    // --- The player (frmControl_player.cpp) ---
    void StartMotion(BarButton motion);
    bool BecomesWish(BarButton button);
    void StopMotion();
    void EndMotion();
    void Step(BarButton button);
    void SetDisplaySize(int sizeMode);
    static int NextSizeMode();
    void CoolBar_ButtonDropDown(BarButton button, const RECT& place);
    void SetImage(BarButton button, ToolbarImage image);
    void ShowDisplaySizeImage();
    void UpdateToolbar();
    bool MayStep() const;

    // --- Files on the disk (frmControl_files.cpp) ---
    void RegisterFileCommands();
    // The full paths of the files that commands are about; where there are none the user is told.
    std::vector<std::wstring> TargetFiles() const;
    void CopyPath();
    void RenameShown();
    std::wstring RenameOnDisk(const std::wstring& path, const std::wstring& newPath);
    void FileRenamed(const std::wstring& path, const std::wstring& newPath);
    void DeleteShown(bool forGood);
    bool MayDelete(const std::vector<std::wstring>& paths, bool forGood) const;
    void DeleteListed(std::vector<std::wstring> paths, bool forGood);
    void DeleteFiles(const std::vector<std::wstring>& paths, bool forGood);

    // The steps that begin with these files as they are listed now.
    std::vector<ListedStep> StepsOf(std::span<const BinnedFile> binned) const;
    // What is done with files meanwhile, while nothing of the program has them open.
    struct FileWork {
        const wchar_t* what;     // as "削除しています"
        const wchar_t* session;  // the same as a sentence, for the session's end
        const wchar_t* caption;  // of the window that tells how far it is
    };
    void WhileFilesChange(const FileWork& texts,
                          const std::function<void(const DeletionNews& tell)>& work);

    // --- Moving and copying files (frmControl_transfer.cpp) ---
    void RegisterTransferCommands();
    bool IsMemberMeant() const;
    void TransferShown(bool moves);
    void TransferListed(const std::vector<std::wstring>& paths, bool moves);
    void TransferFiles(const std::vector<TransferredFile>& files, bool moves);
    void FilesTransferred(const std::vector<FileStep>& done, bool moves);
    void CopyMember();

    // --- Undoing that (frmControl_undo.cpp) ---
    std::wstring UndoCaption() const;
    void UndoLast();
    void PutBackInList(const FileAct& act, std::vector<ListedStep> back);
    void TellNotUndone(FileAct left, const std::wstring& problems);

    // --- The delete list (frmControl_delete.cpp) ---
    void AddToDeleteList();
    void MarkDuringShow();
    void cmdOK_Click();
    void SetPanelOpen(bool open) override;
    bool IsPanelInSight() const override { return IsVisible(); }
    void ShowNote(const std::wstring& note) override { window_.ShowNote(note); }
    void ShowInPlaceOf(int index) override;
    void ForgetDeletion() override;
    void Remember(const std::vector<BinnedFile>& binned) override;
    void WhileDeleting(const std::function<void(const DeletionNews&)>& deletion) override;

    frmMain& window_;
    UniqueFont font_;
    Label infoName_;  // out of sight: screen readers name a list or field by the label before it
    Label placeName_;
    Label filesName_;
    Label membersName_;
    Toolbar coolBar_;
    TextBox textFileInfo_;
    PlaceSlider placeSlider_{
        {.passes =
             [this](const EntryPlace& place) { window_.ShowNote(PlaceText(sequence_, place)); },
         .chooses = [this](const EntryPlace& place) { GoTo(place); },
         .released = [this] { PlaceChanged(); }}};
    VirtualList listFileName_;
    VirtualList listArchiveFile_;
    DeletePanel deletePanel_;
    FileSequence sequence_;
    ShownFiles shownFiles_{listFileName_, sequence_.Files()};
    ShownMembers shownMembers_{listArchiveFile_, sequence_};
    RandomWay randomWay_{GetTickCount()};  // of the slide show
    DeleteList deleteList_{sequence_, *this};
    FileHistory history_;
    std::wstring contextFile_;  // that a menu is about; empty: what is shown
    uint32_t listNumber_ = 0;   // of the lists that were shown
    Splitter edge_;             // towards the picture
    Splitter border_;           // between files and members
    BarDock dock_;
    BarPlace place_;
    BarParts parts_{};
    DockFrame dockFrame_;
    DockSide dockTarget_ = DockSide::kFloating;  // where the dragged bar would be docked
    RECT dragged_{};                             // where it was dragged to
    bool hasMembers_ = false;                    // that are listed
    BarTexts texts_;
    Player player_;
    FolderFollower follower_{
        [this](std::vector<ListedFile>& files, int opened) { return TakeFolder(files, opened); },
        [this] { return window_.ArePluginsComing(); }};
    bool entersAtEnd_ = false;  // the archive that is selected, which opens with its last picture
    bool wantsBottom_ = false;  // the next button does
    bool toBottom_ = false;     // a step back does
    Place startAt_;             // what is shown of its file, when that is shown next
    BookChoice book_;           // for what is viewed
    std::wstring bookOf_;       // whose it is: an archive, or a folder with a backslash
    bool bookOfArchive_ = false;
    std::wstring listFolder_;  // that the list is of, with a backslash; empty: of none alone
    EntryOrder fileOrder_;     // of the list
    EntryOrder memberOrder_;   // of the archive that is viewed
    bool formLoaded_ = false;
    bool unloading_ = false;
    uint32_t memberPages_ = 0;  // that the selected member has; 0: none
    uint32_t memberPage_ = 0;   // of these, from 0, that is selected
    bool passedBy_ = false;     // the selected file was not fetched, for nobody waited for it
    std::wstring failure_;      // why the file shown last is not shown
    int busy_ = 0;              // how many Busy there are
    Burst* burst_ = nullptr;    // the one there is
    bool listsChange_ = false;  // nothing may be asked of them now
    std::wstring loadingPath_;  // the file that is being loaded; empty: none
    std::wstring shownPath_;    // the file that the view shows, or why it does not
    std::wstring cutNotice_;    // what was told of a list that was too long
    static constexpr UINT kThumbsMessage = WM_APP + 1;  // small pictures have come
    Wishes wishes_;
    int travel_ = 1;            // the direction of the last step: 1 or -1
    ULONGLONG lastLoad_ = 0;    // when it ended, in ticks
    bool keyRepeats_ = false;   // the message being handled is of a key that is held down
    HWND lastFocus_ = nullptr;  // the control that had the focus when it left them all
    int stops_ = 0;             // how often the stop button was pressed
    int starts_ = 0;            // how often a motion was started
    // Whether the message that small pictures have come is under way.
    std::shared_ptr<std::atomic<bool>> thumbsTold_;
    Timer wishesDue_{[this] { CarryOutWishes(); }};
    Timer placeDue_{[this] { TellPlace(); }};
    Accelerators accelerators_;
    MessageFilter dialogKeys_;
    MessageFilter repeats_{[this](const MSG& message) {
        keyRepeats_ = message.message == WM_KEYDOWN && (HIWORD(message.lParam) & KF_REPEAT) != 0;
        return false;
    }};
};

}  // namespace tessary
