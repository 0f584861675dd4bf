// The converter's window during a run and behind it.
#include "app/base/call_user.h"
#include "app/base/message_box.h"
#include "app/base/raised_flag.h"
#include "app/base/write_error.h"
#include "app/settings/modValue.h"
#include "convert/convert_log.h"
#include "convert/make_folder.h"
#include "convert/modConvertFiles.h"
#include "res/resource.h"
#include "ui/convert/frmConvertAll.h"
#include "ui/dialogs/frmConflict.h"
#include "ui/form/activity.h"
#include "ui/form/session_hold.h"

namespace tessary {
namespace {

// How often the screen shows what is new, and messages are let through. The engine tells much more
// than that.
constexpr ULONGLONG kRefreshMilliseconds = 30;

// Texts that have not changed would flicker.
void ShowText(Label& label, const std::wstring& text) {
    if (label.Text() != text) label.SetText(text);
}

BOOL CALLBACK CloseOwned(HWND window, LPARAM owner) {
    if (GetWindow(window, GW_OWNER) == reinterpret_cast<HWND>(owner) && IsWindowEnabled(window)) {
        PostMessageW(window, WM_CLOSE, 0, 0);
    }
    return TRUE;
}

}  // namespace

void frmConvertAll::cmdRunConvert_Click() {
    if (converting_ || IsReadUnderWay() || files_.IsEmpty()) return;
    const std::wstring folder = TypedFolder();
    if (folder.empty()) {
        ShowMessageBox(L"画像ファイルを保存するフォルダを指定してください。", MB_ICONEXCLAMATION);
        cmdConvertFolder_.SetFocus();
        return;
    }
    textConvertFolder_.SetText(folder);
    RememberFolder();
    if (const std::wstring refusal = LogRefusal(ConvertFileList(), Values().convert);
        !refusal.empty()) {
        ShowMessageBox(refusal + L"\r\n\r\n「詳細オプション」で別のログファイルを選んでください。",
                       MB_ICONEXCLAMATION);
        return;
    }
    BeginRun();
    {
        const ReadUnderWay reading;
        const SessionHold session(Handle(), L"画像を変換しています。");
        const MessageFilter keys([this](MSG& message) {
            return Handle() != nullptr && IsDialogMessageW(Handle(), &message) != FALSE;
        });
        const ConvertEnd end = ConvertFiles(folder, *this);
        ended_ = end.isWhole;
        // The engine has written nothing when there is no folder to save to.
        const bool isThere = ended_ || listConvertLog_.Count() != 0 || MakeFolder(folder);
        trouble_ = WriteErrorText(isThere ? end.logError : GetLastError());
    }
    EndRun();
}

void frmConvertAll::BeginRun() {
    converting_ = true;
    continue_ = true;
    total_ = {0, files_.Count()};
    file_ = {0, 1};
    outcomes_ = {};
    forAll_.reset();
    listConvertProblems_.Clear();
    runStart_ = GetTickCount64();
    lastRefresh_ = 0;
    taskbar_.emplace(Handle());
    EnableRunConvert();
    // Enter does nothing until the run is over.
    SendMessageW(Handle(), DM_SETDEFID, IDOK, 0);
    ShowProgress();
    ShowView(View::kStatus);
    listConvertLog_.SetFocus();
}

void frmConvertAll::EndRun() {
    converting_ = false;
    taskbar_.reset();
    if (Handle() == nullptr) return;
    ShowProgress();
    ShowText(lblTime_, RunTimeText(GetTickCount64() - runStart_, 0, 0));
    ShowText(lblResult_, ResultText());
    listConvertProblems_.ShowByKind();
    if (listConvertProblems_.Count() != 0) ShowPane(Pane::kProblems);
    cmdOK_.SetVisible(true);
    cmdOK_.SetEnabled(true);
    cmdRunConvert_.SetVisible(false);
    cmdRunConvert_.SetEnabled(false);
    if (GetActiveWindow() == Handle()) cmdOK_.SetFocus();
    Command2_.SetEnabled(false);
    UserCall(Handle()).Keep();
    if (CurrentActivity().quitRequested) Close(IDCANCEL);
}

void frmConvertAll::cmdOK_Click() {
    if (converting_ || !cmdOK_.IsEnabled()) return;
    ShowView(View::kSettings);
    listConvertLog_.Clear();
    listConvertProblems_.Clear();
    cmdRunConvert_.SetVisible(true);
    EnableRunConvert();
    listConvertFiles_.SetFocus();
    cmdOK_.SetVisible(false);
    cmdOK_.SetEnabled(false);
    Command2_.SetEnabled(true);
    SendMessageW(Handle(), DM_SETDEFID, cmdRunConvert, 0);
}

void frmConvertAll::Command2_Click() {
    if (!converting_) {
        Leave();
        return;
    }
    if (!continue_) return;  // it stops behind the file at hand
    if (ShowMessageBox(L"画像の変換処理を中止します。", MB_OKCANCEL | MB_ICONINFORMATION) == IDOK) {
        continue_ = false;
        ShowText(lblResult_, ResultText());
    }
}

// Enter and Esc come here too.
void frmConvertAll::Dialog_OK() {
    if (listConvertProblems_.HasFocus() && listConvertProblems_.ShowSelectedInFolder()) return;
    cmdOK_Click();
}

void frmConvertAll::Dialog_Cancel() {
    if (Command2_.IsEnabled()) Command2_Click();
}

void frmConvertAll::Form_QueryUnload(bool& cancel) {
    cancel = RefusesToClose();
}

bool frmConvertAll::RefusesToClose() {
    if (!converting_) return false;
    if (refusing_) return true;  // each window of the program may be asked
    const RaisedFlag refusing(refusing_);
    ShowMessageBox(
        L"画像の変換処理を行っています。\r\n変換処理を中止してからWindowを閉じてください。",
        MB_ICONSTOP);
    return true;
}

// The system does not wait for an answer to a message, and the run would.
void frmConvertAll::EndSession() {
    continue_ = false;
    // Not the last active pop-up, which the system knows of windows without an owner only.
    EnumThreadWindows(GetCurrentThreadId(), CloseOwned, reinterpret_cast<LPARAM>(Handle()));
}

// --- What the engine tells ---

ConflictAnswer frmConvertAll::AskConflict(const ConflictQuestion& question) {
    if (forAll_) return *forAll_;
    if (!continue_ || Handle() == nullptr) return ConflictAnswer::kStop;
    ShowProgress();
    frmConflict dialog;
    const ConflictAnswer answer = dialog.Ask(Handle(), question);
    if (answer == ConflictAnswer::kStop) continue_ = false;
    if (dialog.IsForAll()) forAll_ = answer;
    return answer;
}

void frmConvertAll::FileDone(const FileReport& report) {
    outcomes_.Count(report);
    listConvertProblems_.Add(report);
}

bool frmConvertAll::SetProgressBar(int32_t totalPosition, int32_t totalMaximum,
                                   int32_t filePosition, int32_t fileMaximum) {
    if (totalMaximum >= 0) total_ = {totalPosition, totalMaximum};
    if (fileMaximum > 0) file_ = {filePosition, fileMaximum};
    Refresh();
    return continue_ && !CurrentActivity().quitRequested;
}

void frmConvertAll::Refresh() {
    if (GetTickCount64() - lastRefresh_ < kRefreshMilliseconds) return;
    ShowProgress();
    if (!DoEvents()) continue_ = false;
    lastRefresh_ = GetTickCount64();
}

void frmConvertAll::ShowProgress() {
    progressTotal_.SetProgress(total_.position, total_.maximum);
    progressCurrentFile_.SetProgress(file_.position, file_.maximum);
    ShowText(lblRateTotal_,
             std::to_wstring(total_.position) + L" / " + std::to_wstring(total_.maximum));
    ShowText(lblTime_, RunTimeText(GetTickCount64() - runStart_, total_.position, total_.maximum));
    ShowText(lblResult_, ResultText());
    listConvertLog_.Show();
    ShowProblems();
    if (taskbar_) taskbar_->SetProgress(total_.position, total_.maximum);
}

void frmConvertAll::ShowProblems() {
    const size_t count = listConvertProblems_.Count();
    std::wstring caption = L"確認が必要なファイル(&P)";
    if (count != 0) caption += L"　" + std::to_wstring(count) + L" 件";
    if (optionConvertProblems_.Text() != caption) optionConvertProblems_.SetText(caption);
    if (optionConvertProblems_.IsChecked()) listConvertProblems_.Show();
}

std::wstring frmConvertAll::ResultText() const {
    const std::wstring counts = OutcomeText(outcomes_);
    if (converting_) return continue_ ? counts : L"中止しています...　" + counts;
    // The engine writes no log then.
    if (listConvertLog_.Count() == 0)
        return L"変換できませんでした。ファイルの保存先を確認してください。　" + trouble_;
    const std::wstring text =
        (ended_ ? L"変換が終わりました。　" : L"変換を中止しました。　") + counts;
    return trouble_.empty() ? text : text + L"　ログファイルに書き込めません。" + trouble_;
}

}  // namespace tessary
