// The control bar: the list of files being viewed, the members of the archive among them, the
// player's buttons and the delete list.
//
// The window has no caption: it is dragged by its body and folds up to its toolbar.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "picture/show/member_list.h"
#include "picture/show/modShowPicture.h"
#include "ui/control/delete_file.h"
#include "ui/control/deletion_marks.h"
#include "ui/control/player.h"
#include "ui/control/toolbar_images.h"
#include "ui/control/wishes.h"
#include "ui/form/accelerators.h"
#include "ui/form/form.h"
#include "ui/form/list_box.h"
#include "ui/form/simple_controls.h"
#include "ui/form/timer.h"
#include "ui/form/toolbar.h"
#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"

namespace tessary {

class frmControl final : public Form, public ControlBar, public MemberList {
  public:
    // Heights of the window in pixels at 96 dpi.
    static constexpr int kFoldedHeight = 28;
    static constexpr int kUnfoldedHeight = 130;
    static constexpr int kDeletePanelHeight = 270;

    // The main window shows the pictures, owns the loaded bar and must outlive it.
    explicit frmControl(frmMain& window);
    ~frmControl() = default;

    // Folded up to the toolbar. Setting it folds or unfolds; while files are being collected for
    // deletion the window stays tall.
    bool IsRollUp() const { return isRollUp_; }
    void SetRollUp(bool rollUp);

    // Loads the window if need be. The list takes the entries with an index up to 32001 that are
    // not empty. False also while another list is being filled or a picture loaded.
    bool SetFileList(std::span<const std::wstring> files) override;

    // Selects the entry before or behind: of the archive's members first, then of the files,
    // leaving out those of unknown kind. False when the selection has not moved there.
    bool ListIndexBackOne();
    bool ListIndexForwardOne();

    // What a click on the toolbar's button does; a disabled button does nothing.
    void CoolBar_ButtonClick(BarButton button);

    // Whether the window is loaded.
    bool boolFormLoaded() const { return formLoaded_; }

    // ControlBar
    std::wstring Failure() const override;
    void PictureReplaced(const std::wstring& info) override;
    void FileSaved(const std::wstring& path) override;
    void ClearLists() override;
    std::vector<std::wstring> FileList() const override;
    bool IsPlaying() const override { return player_.IsPlaying(); }
    void WishCommand(int command) override;
    bool AwaitsFile() const override;
    bool HasFiles() const override { return listFileName_.Count() > 0; }
    void Press(BarButton button) override { CoolBar_ButtonClick(button); }
    bool IsVisible() const override;
    void SetVisible(bool visible) override;
    void TakeFocus(BarFocus focus) override;
    bool MayClose() override;
    void SavePlace() override;
    void Unload() override;

    // MemberList
    void SetMembers(std::span<const ListedMember> members) override;

    const ListBox& listFileName() const { return listFileName_; }
    const ListBox& listArchiveFile() const { return listArchiveFile_; }
    const ListBox& listDelete() const { return listDelete_; }
    const TextBox& textFileInfo() const { return textFileInfo_; }
    const Toolbar& CoolBar() const { return coolBar_; }
    // Whether a click on the button does something now.
    bool IsUsable(BarButton button) const;
    BarButton PlayMode() const { return player_.PlayMode(); }

  private:
    class Busy;
    class Burst;

    // --- The window (frmControl.cpp) ---
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;
    void Form_Unload() override;
    void Form_Resize(int width, int height) override;
    void Form_MetricsChanged() override;
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void CreateControls();
    void PaintBackground(HDC context) const override;
    int HeightAboveToolbar() const;
    LRESULT HitTest(LPARAM onScreen) const;
    void RegisterCommands();

    // --- Its keys and focus (frmControl_keys.cpp) ---
    bool PassKeyOn(int keyCode, int shift);
    bool IsKeyOfProgram(const MSG& key) const;
    void TakePanelKeys();
    bool TakesMessage(MSG& message);
    bool PressMnemonic(wchar_t letter);
    void MoveFocus(bool back);
    void FocusPart(HWND part);

    // --- Its place and fold state (frmControl_place.cpp) ---
    void ReadPlace();
    RECT Frame() const;
    void SetHeight(int pixelsAt96Dpi);
    void RollUp();
    void RollDown();
    void ShowFoldedOrNot();
    void MoveOntoScreen();

    // --- The lists (frmControl_lists.cpp) ---
    void FillFileList(std::span<const std::wstring> files);
    void listFileName_Click();
    void listArchiveFile_Click();
    void ShowListedFile(const std::wstring& path);
    void ShowListedMember();
    void ShowNoArchive();
    void ShowVanished(const std::wstring& path);
    void ShowEmptyList();
    ShownFile Show(const std::wstring& name, const std::function<ShownFile()>& show);
    void TellInfo(const std::wstring& info);
    void TellShown(const std::wstring& text);
    void TellNotShown(const std::wstring& text);
    void TellLoading(const std::wstring& text);
    void TellLate();
    void TellCut(std::span<const std::wstring> files);
    void DisableParts();
    void EnableParts(HWND focused);
    void EndLoad();

    // --- Stepping, and what is asked for meanwhile (frmControl_wishes.cpp) ---
    std::optional<int> FindKnown(int start, int step);
    bool MoveBy(int steps, bool inArchive);
    bool MoveInFiles(int steps, bool orStay);
    bool IsLoading() const;
    void WishStep(int step);
    void WishMark();
    void WishIsThere();
    void CarryOutWishes();
    int IndexOf(const std::wstring& path) const;

    // --- The player (frmControl_player.cpp) ---
    void StartMotion(BarButton motion);
    bool BecomesWish(BarButton button);
    void StopMotion();
    void EndMotion();
    void Step(BarButton button);
    void SetDisplaySize(int sizeMode);
    void CoolBar_ButtonDropDown(BarButton button, const RECT& place);
    void SetImage(BarButton button, ToolbarImage image);
    void ShowDisplaySizeImage();
    void UpdateToolbar();
    bool MayStep() const;

    // --- The delete list (frmControl_delete.cpp) ---
    void AddToDeleteList();
    void MarkDuringShow();
    void MarkForDeletion(int index);
    void OpenDeletePanel();
    void PlaceForPanel();
    void AskToCancel();
    void CountMarks();
    std::vector<std::wstring> MarkedFiles() const;
    std::optional<int> TryToDelete(const std::vector<std::wstring>& paths);
    void DeleteFromDisk(const std::vector<std::wstring>& paths, std::vector<std::wstring>& deleted);
    DeleteOutcome DeleteMarked(const std::wstring& path);
    void PutBack(const std::wstring& path);
    void TakeMark(const std::wstring& path);
    std::optional<int> RemoveListed(const std::vector<std::wstring>& deleted);
    void ShowInPlaceOf(int index);
    void CloseDeletePanel();
    void listDelete_DblClick();
    void cmdOK_Click();
    void cmdDelList_Click();
    void cmdCancel_Click();

    frmMain& window_;
    UniqueFont font_;
    Label infoName_;  // out of sight: screen readers name a list or field by the label before it
    Label filesName_;
    Label membersName_;
    Label deleteName_;
    Toolbar coolBar_;
    TextBox textFileInfo_;
    ListBox listFileName_;
    ListBox listArchiveFile_;
    ListBox listDelete_;
    Button cmdOK_;
    Button cmdDelList_;
    Button cmdCancel_;
    Label lblMarks_;  // how many files the delete list has
    bool isRollUp_ = false;
    bool formLoaded_ = false;
    bool unloading_ = false;
    bool deletePanelOpen_ = false;
    bool archiveShown_ = false;  // the member list belongs to the selected file
    bool passedBy_ = false;      // the selected file was not fetched, for nobody waited for it
    std::wstring failure_;       // why the file shown last is not shown
    int busy_ = 0;               // how many Busy there are
    Burst* burst_ = nullptr;     // the one there is
    bool listsChange_ = false;   // nothing may be asked of them now
    std::wstring loadingPath_;   // the file that is being loaded; empty: none
    std::wstring loadingText_;   // what is told meanwhile
    std::wstring shownPath_;     // the file that the view shows, or why it does not
    std::wstring archivePath_;   // whose members are listed
    std::wstring cutNotice_;     // what was told of a list that was too long
    Wishes wishes_;
    DeletionMarks marks_;      // of the delete list
    bool keyRepeats_ = false;  // the message being handled is of a key that is held down
    std::optional<std::wstring> lateInfo_;  // what is to be told behind the burst
    std::optional<std::wstring> lateShown_;
    HWND lastFocus_ = nullptr;  // the control that had the focus when it left them all
    POINT movedBy_{};           // pixels that the window has moved for the delete panel
    bool panelAbove_ = false;   // the delete panel stands above the toolbar
    bool askingToClose_ = false;
    int stops_ = 0;  // how often the stop button was pressed
    Player player_;
    Timer longLoad_{[this] { TellLate(); }};
    Timer wishesDue_{[this] { CarryOutWishes(); }};
    Accelerators accelerators_;
    MessageFilter dialogKeys_;
    MessageFilter repeats_{[this](const MSG& message) {
        keyRepeats_ = message.message == WM_KEYDOWN && (HIWORD(message.lParam) & KF_REPEAT) != 0;
        return false;
    }};
};

}  // namespace tessary
