#include "ui/control/turn_file_command.h"

#include <atomic>
#include <memory>
#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "app/settings/saver_format.h"
#include "picture/current_picture.h"
#include "res/resource.h"
#include "ui/form/activity.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/session_hold.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

using Outcome = TurnedFile::Outcome;

constexpr ULONGLONG kLastMoment = 5000;  // to stop in, milliseconds

constexpr wchar_t kOwnPlugin[] = L"iftessjpeg.spi";

std::wstring EdgesOf(const TurnedFile& trimmed) {
    const auto edge = [](const wchar_t* name, uint32_t pixels) {
        return pixels == 0 ? std::wstring() : name + std::to_wstring(pixels) + L" ピクセル";
    };
    const std::wstring left = edge(L"左端の ", trimmed.left);
    const std::wstring top = edge(L"上端の ", trimmed.top);
    return left + (left.empty() || top.empty() ? L"" : L"と") + top;
}

std::wstring RefusalText(jpeg::TurnResult why) {
    switch (why) {
        case jpeg::TurnResult::kTooSmall:
            return L"画像が小さすぎて、無劣化では向きを変えられません。";
        case jpeg::TurnResult::kNotThis:
            return L"表示に使ったプラグインが、ファイルの向きの情報(Exif)"
                   L"に従ったかどうかを確かめられ"
                   L"ません。";
        case jpeg::TurnResult::kFurtherPictures:
            return L"プレビューなどの別の画像も入っているのに、向きの情報(Exif)がありません。";
        case jpeg::TurnResult::kNoMemory:
            return L"メモリが足りません。";
        default:
            return L"ファイルが損傷しているか、無劣化では向きを変えられない種類の JPEG です。";
    }
}

std::wstring ReasonOf(const TurnedFile& turned) {
    switch (turned.outcome) {
        case Outcome::kRefused:
            return RefusalText(turned.why);
        case Outcome::kChanged:
            return L"表示した後で、ファイルが変更または削除されています。表示し直してから、もう一度"
                   L"試し"
                   L"てください。";
        case Outcome::kNotRead:
            return L"ファイルを読み取れません。ほかのアプリケーションで使用中かもしれません。";
        case Outcome::kNotWritten:
            return WriteErrorText(turned.error);
        default:
            return std::wstring(L"処理をするプログラム（") + kHostProgram +
                   L"）が動かないか、途中で終了しました。";
    }
}

}  // namespace

TurnFileCommand::TurnFileCommand(frmMain& window, std::wstring program)
    : window_(window), program_(std::move(program)) {
    window_.Commands().Register(commandTurnFile, {.run = [this] { commandTurnFile_Click(); },
                                                  .enabled = [this] { return IsPossible(); }});
}

bool TurnFileCommand::IsPossible() const {
    const PictureSource& source = window_.Source();
    return window_.PictureShown() && window_.Orientation() != exif::kUpright &&
           !source.path.empty() && !source.isSpread && FileNameOf(source.path) == source.fileName &&
           SaverFormatOf(source.fileName) == SaverFormatAt(kJpegFormat);
}

TurnedFile TurnFileCommand::Turn(const JpegFileToTurn& file) {
    const frmMain::Reading reading(window_, L"JPEG ファイルの向きを変えています");
    const SessionHold session(window_.Handle(), L"画像を保存しています。");
    const BusyPointer busy;
    const auto isStopped = std::make_shared<std::atomic<bool>>(false);
    // It is waited for, stopped or not: afterwards it is known what stands in the file. One that a
    // network holds up is left behind then, and replaces nothing. Closing the program stops
    // nothing.
    ULONGLONG stoppedAt = 0;
    const auto turned = CallInBackground<TurnedFile>(
        [file, isStopped, program = program_] {
            return TurnJpegFile(
                file, [isStopped] { return !*isStopped; }, program);
        },
        [&] {
            window_.TellProgress(0, 0);
            if (!window_.Breathe() && !CurrentActivity().quitRequested &&
                !isStopped->exchange(true))
                stoppedAt = GetTickCount64();
            return stoppedAt == 0 || GetTickCount64() - stoppedAt < kLastMoment;
        });
    return turned.value_or(
        TurnedFile{.outcome = *isStopped ? Outcome::kStopped : Outcome::kFailed});
}

std::optional<TurnedFile> TurnFileCommand::AskToTrim(JpegFileToTurn file,
                                                     const TurnedFile& trimmed) {
    const std::wstring question =
        L"この画像の大きさでは、無劣化で向きを変えると" + EdgesOf(trimmed) +
        L"が失われます。\r\n\r\n「はい」　その部分を切り落として、上書き保存します。"
        L"\r\n「いいえ」　切り落とさず、圧縮し直して名前を付けて保存します。"
        L"\r\n「キャンセル」　何もしません。";
    switch (ShowMessageBox(question, MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3)) {
        case IDYES:
            file.wish.trims = true;
            return Turn(file);
        case IDNO:
            if (window_.Source().path == file.path) window_.Commands().Run(menuFileSaveAs);
            return std::nullopt;
        default:
            return std::nullopt;
    }
}

void TurnFileCommand::commandTurnFile_Click() {
    if (!IsPossible() || !CurrentPicture()) return;
    JpegFileToTurn file{window_.Source().path, window_.SourceStamp(), {}};
    file.wish.orientation = window_.Orientation();
    file.wish.width = static_cast<uint32_t>(CurrentPicture().Width());
    file.wish.height = static_cast<uint32_t>(CurrentPicture().Height());
    if (exif::SwapsSides(file.wish.orientation)) std::swap(file.wish.width, file.wish.height);
    file.wish.followsFile = EqualsIgnoreCase(FileNameOf(window_.Source().pluginName), kOwnPlugin);
    std::optional<TurnedFile> turned = Turn(file);
    if (turned->outcome == Outcome::kRefused && turned->why == jpeg::TurnResult::kWouldTrim &&
        !CurrentActivity().quitRequested) {
        turned = AskToTrim(file, *turned);
    }
    if (turned) Tell(file, *turned);
    window_.CloseIfAsked();
}

void TurnFileCommand::Tell(const JpegFileToTurn& file, const TurnedFile& turned) const {
    if (turned.outcome == Outcome::kDone) {
        window_.TellSaved(file.path);
        if (CurrentActivity().quitRequested) return;
        window_.ShowAnew(file.path);
        return window_.ShowNote(L"この向きで上書き保存しました: " + FileNameOf(file.path));
    }
    if (CurrentActivity().quitRequested) return;
    if (turned.outcome == Outcome::kStopped) {
        return window_.ShowNote(L"中止しました。ファイルは元のままです。");
    }
    ShowMessageBox(L"ファイル " + file.path + L" の向きを変えられません。\r\n" + ReasonOf(turned) +
                       L"\r\nファイルは元のままです。",
                   MB_ICONEXCLAMATION);
}

}  // namespace tessary
