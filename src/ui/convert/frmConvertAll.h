// The batch converter's window: which files to convert, where to and into what, and how far the
// conversion is.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "convert/convert_monitor.h"
#include "sequence/entry_list.h"
#include "ui/convert/list_box_mirror.h"
#include "ui/convert/log_list.h"
#include "ui/convert/problem_list.h"
#include "ui/convert/run_texts.h"
#include "ui/form/combo_box.h"
#include "ui/form/dialog.h"
#include "ui/form/file_drop_target.h"
#include "ui/form/list_box.h"
#include "ui/form/metrics.h"
#include "ui/form/progress_bar.h"
#include "ui/form/simple_controls.h"
#include "ui/form/taskbar_progress.h"

namespace tessary {

// Two views in one window: the settings, and the status during a run and behind it, until the user
// has confirmed that. Files and folders may be dropped onto the settings.
class frmConvertAll final : private Dialog, private ConvertMonitor {
  public:
    // Opens the options dialog at its first page, over `owner`.
    using OptionsOpener = std::function<void(HWND owner)>;

    // Without `showOptions` the button of the options is disabled.
    explicit frmConvertAll(OptionsOpener showOptions = {});
    ~frmConvertAll() = default;

    // Shows the window with these files, full paths, in its list until the user closes it. The
    // program's other windows are out of his reach meanwhile. While it is shown already: adds the
    // files.
    void ShowConvertDialog(HWND owner, std::span<const std::wstring> files);

    // Whether a run keeps the program from being closed. The user is told so then.
    bool RefusesToClose();

    // ConvertMonitor. What is told shows on the screen at most about thirty times a second, when
    // messages are let through as well. False once the user has confirmed a stop, or the program is
    // to end.
    bool SetProgressBar(int32_t totalPosition, int32_t totalMaximum, int32_t filePosition,
                        int32_t fileMaximum) override;

    // Enables the run button when there are files and a target folder that can be one, and nothing
    // is under way; tells beside it what is missing.
    void EnableRunConvert();

  private:
    enum class View { kSettings, kStatus };
    enum class Pane { kLog, kProblems };  // of the status

    // --- The window and its list (frmConvertAll.cpp) ---
    void Dialog_Load() override;
    void Dialog_Unload() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void AttachControls();
    void AnchorControls();
    void ShowView(View view);
    void ShowPane(Pane pane);
    void FontsChanged();

    void AddFiles(std::span<const ConvertSource> files);
    void AddListed(std::vector<std::wstring> paths);
    void ListChanged();
    void listConvertFiles_KeyDown(int keyCode, int shift, bool& taken);
    void cmdAddFile_Click();
    void cmdAddFolder_Click();
    void cmdDelete_Click();
    void cmdDeleteAll_Click();
    void Leave();

    // --- Choices for all files (frmConvertAll_choices.cpp) ---
    void FillFormats();
    void ShowChoices();
    void cmdConvertFolder_Click();
    std::wstring TypedFolder() const;
    void RememberFolder();
    void Command3_Click();

    // --- A run and its status (frmConvertAll_run.cpp) ---
    void Dialog_OK() override;
    void Dialog_Cancel() override;
    void Form_QueryUnload(bool& cancel);
    void EndSession();
    void cmdRunConvert_Click();
    void cmdOK_Click();
    void Command2_Click();
    void BeginRun();
    void EndRun();
    void Refresh();
    void ShowProgress();
    void ShowProblems();
    std::wstring ResultText() const;

    std::vector<ConvertSource> ConvertFileList() override {
        return {files_.All().begin(), files_.All().end()};
    }
    size_t LogLineCount() override { return listConvertLog_.Count(); }
    void RemoveFirstLogLine() override { listConvertLog_.RemoveFirst(); }
    void AddLogLine(const std::wstring& line) override { listConvertLog_.Add(line); }
    void Breathe() override { Refresh(); }
    ConflictAnswer AskConflict(const ConflictQuestion& question) override;
    void FileDone(const FileReport& report) override;

    OptionsOpener showOptions_;
    std::vector<ConvertSource> firstFiles_;  // while the window is being loaded
    std::vector<std::wstring> dropped_;      // what is to be added when the source is done
    bool listing_ = false;                   // a folder's files are being looked for

    // What a run tells, as it was told last.
    struct Progress {
        int32_t position = 0;
        int32_t maximum = 0;
    };
    bool converting_ = false;
    bool leaving_ = false;  // asked to close while a folder is being listed
    bool continue_ = false;
    bool ended_ = false;     // the last run has got to its end
    std::wstring trouble_;   // why it has no folder to save to, or no log; empty: it has
    bool refusing_ = false;  // the user is being told that a run is under way
    Progress total_;
    Progress file_;
    OutcomeCounts outcomes_;
    std::optional<ConflictAnswer> forAll_;  // what the user wants for all conflicts of the run
    ULONGLONG runStart_ = 0;                // tick count, milliseconds
    ULONGLONG lastRefresh_ = 0;             // the same
    std::optional<TaskbarProgress> taskbar_;

    EntryList<ConvertSource, &ConvertSource::path> files_;  // to convert
    ListBox listConvertFiles_;
    ListBoxMirror filesMirror_{listConvertFiles_};
    Label labelConvertCount_;
    Button cmdAddFile_;
    Button cmdAddFolder_;
    Button cmdDelete_;
    Button cmdDeleteAll_;
    Button Command3_;
    TextBox textConvertFolder_;
    Button cmdConvertFolder_;
    ComboBox combConvertIndexcolor_;
    ComboBox combConvertFullcolor_;
    ComboBox combConvertOnConflict_;
    Button checkConvertKeepFolders_;
    Button checkConvertSkipDamaged_;
    Label labelConvertMissing_;
    Label lblTime_;
    Label lblRateTotal_;
    ProgressBar progressTotal_;
    ProgressBar progressCurrentFile_;
    Label lblResult_;
    Button optionConvertLog_;
    Button optionConvertProblems_;
    LogList listConvertLog_;
    ProblemList listConvertProblems_;
    Button cmdRunConvert_;
    Button cmdOK_;
    Button Command2_;
    UniqueIcon icon_;
    FileDropTarget dropTarget_;
};

}  // namespace tessary
