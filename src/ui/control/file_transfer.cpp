#include "ui/control/file_transfer.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

#include "app/base/file_texts.h"
#include "app/base/found_file.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "ui/dialogs/frmConflict.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr size_t kMostTold = 8;            // of the files that failed
constexpr int32_t kPartsOfFile = 1000;     // of the progress
constexpr DWORD kStopMilliseconds = 5000;  // a system that does not answer is waited for no longer
constexpr int kMostTries = 5;              // while others give the same names

constexpr wchar_t kUndoHint[] = L"（Ctrl+Z で元に戻せます）";

std::wstring Several(size_t count) {
    return std::to_wstring(count) + L" 個のファイル";
}

// What tells two files of one name apart, before the place, which may be long.
std::wstring FactsOf(const std::wstring& path, const std::wstring& from) {
    const FoundFile file = NamedFileOf(path);
    return FileTimeText(file.time) + L"   " + FileSizeText(file.size) + L"   " + from;
}

std::wstring ReasonOf(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
            return L"ファイルが見つかりません。";
        case ERROR_NOT_READY:
            return L"ドライブの準備ができていません。";
        case ERROR_FILE_TOO_LARGE:
            return L"このドライブに置ける大きさを超えています。";
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_BUFFER_OVERFLOW:
        case ERROR_INVALID_NAME:
            return L"このフォルダでは、名前が長すぎるか、使えない文字があります。";
        case ERROR_FILE_EXISTS:
            return L"同じ名前のファイルかフォルダがあります。";
        default:
            return WriteErrorText(error);
    }
}

// What the thread that works and the one that waits tell each other.
struct Flow {
    std::atomic<int32_t> part = 0;  // of kPartsOfFile
    std::atomic<bool> stops = false;
};

}  // namespace

std::wstring TargetFolderProblem(const std::wstring& folder) {
    const DWORD attributes = GetFileAttributesW(ExtendedPath(AddBackslash(folder)).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = GetLastError();
        const bool isGone = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
        return (isGone ? std::wstring(L"フォルダが見つかりません。") : ReasonOf(error)) +
               L"\r\n　" + folder;
    }
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return isFolder ? std::wstring() : L"これはフォルダではありません。\r\n　" + folder;
}

FileTransfer::FileTransfer(bool moves, const std::wstring& folder, Owner owner)
    : moves_(moves),
      folder_(folder.ends_with(L'\\') ? folder : folder + L'\\'),
      owner_(std::move(owner)) {}

void FileTransfer::Run(const std::vector<TransferredFile>& files, const News& tell) {
    files_ = files;
    for (at_ = 0; at_ < files_.size() && !isStopped_; ++at_)
        Transfer(files_[at_], tell);
}

// Other programs, and another copy of this one, may give the same names meanwhile.
void FileTransfer::Transfer(const TransferredFile& file, const News& tell) {
    for (int tries = 1;; ++tries) {
        std::optional<Way> way = WayFor(file);
        if (!way) return;
        std::optional<Outcome> outcome = Do(file, *way, tell);
        if (outcome && outcome->error == ERROR_NOT_SUPPORTED &&
            way->inTheWay == InTheWay::kIsBinned) {
            if (ShowMessageBox(L"移動先にあるファイルは、ごみ箱に入れられません。\r\n" +
                                   way->target +
                                   L"\r\n\r\n完全に削除して置き換えますか？ "
                                   L"削除すると、元に戻せません。",
                               MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) != IDYES) {
                ++skipped_;
                return;
            }
            way->inTheWay = InTheWay::kIsReplaced;
            outcome = Do(file, *way, tell);
        }
        if (!outcome || outcome->error == ERROR_CANCELLED) {
            isStopped_ = true;
        } else if (outcome->error == ERROR_SUCCESS) {
            done_.push_back(std::move(outcome->step));
        } else if (outcome->error == ERROR_FILE_EXISTS && tries < kMostTries) {
            continue;
        } else {
            Fail(file, outcome->error);
        }
        return;
    }
}

// Nothing where the file stays as it is, which is counted.
std::optional<FileTransfer::Way> FileTransfer::WayFor(const TransferredFile& file) {
    const std::wstring target = folder_ + file.name;
    const std::optional<AtTarget> look = CallInBackground<AtTarget>(
        [path = file.path, target] { return LookAtTarget(path, target); }, [] { return true; });
    switch (look.value_or(AtTarget::kNoSource)) {
        case AtTarget::kNothing:
            return Way{target};
        case AtTarget::kItself:
            ++itself_;
            return std::nullopt;
        case AtTarget::kSame:
            ++same_;
            return std::nullopt;
        case AtTarget::kNoSource:
            Fail(file, ERROR_FILE_NOT_FOUND);
            return std::nullopt;
        default:
            return WayAround(file, target, *look == AtTarget::kFolder);
    }
}

std::optional<FileTransfer::Way> FileTransfer::WayAround(const TransferredFile& file,
                                                         const std::wstring& target,
                                                         bool isFolder) {
    const bool mayReplace = !isFolder && MayReplace(target);
    ConflictAnswer answer = forAll_ ? *forAll_ : Ask(file, target, mayReplace);
    if (answer == ConflictAnswer::kReplace && !mayReplace) answer = ConflictAnswer::kFreeName;
    switch (answer) {
        case ConflictAnswer::kFreeName:
            return Way{FreeName(target)};
        case ConflictAnswer::kReplace:
            return Way{target, MayHaveBin(target) ? InTheWay::kIsBinned : InTheWay::kIsReplaced};
        case ConflictAnswer::kSkip:
            ++skipped_;
            return std::nullopt;
        default:
            isStopped_ = true;
            return std::nullopt;
    }
}

// Not what has just come there, nor what is yet to be transferred.
bool FileTransfer::MayReplace(const std::wstring& target) const {
    const auto is = [&](const std::wstring& path) { return EqualsIgnoreCase(path, target); };
    return std::ranges::none_of(done_, is, &FileStep::now) &&
           std::ranges::none_of(files_, is, &TransferredFile::path);
}

ConflictAnswer FileTransfer::Ask(const TransferredFile& file, const std::wstring& target,
                                 bool mayReplace) {
    const std::wstring where = What() + L"先に、同じ名前";
    const std::wstring lost = MayHaveBin(target)
                                  ? L"置き換えると、今あるファイルはごみ箱に移ります。"
                                  : L"置き換えると、今あるファイルは完全に削除されます。";
    const ConflictTexts texts{
        .question = mayReplace ? where + L"で内容の違うファイルがあります。\r\n" + lost
                               : where + L"のフォルダか、今回" + What() +
                                     L"するファイルがあります。\r\n置き換えはできません。",
        .source = What() + L"するファイル:",
        .target = L"今あるファイル:",
        .freeName = L"別の名前で(&N)",
        .replace = L"置き換える(&O)",
        .stop = L"中止"};
    frmConflict dialog;
    const ConflictAnswer answer =
        dialog.Ask(owner_(),
                   {.source = FactsOf(file.path, file.from.empty() ? file.path : file.from),
                    .target = FactsOf(target, target),
                    .mayReplace = mayReplace},
                   &texts, at_ + 1 == files_.size());
    if (dialog.IsForAll() && answer != ConflictAnswer::kStop) forAll_ = answer;
    return answer;
}

// Nothing where it was stopped, and the system does not even answer to that.
std::optional<FileTransfer::Outcome> FileTransfer::Do(const TransferredFile& file, const Way& way,
                                                      const News& tell) {
    const auto flow = std::make_shared<Flow>();
    const auto transfer = [flow, file, way, moves = moves_] {
        const CopyNews news = [&](uint64_t done, uint64_t total) {
            const uint64_t part = total == 0 ? 0 : done * kPartsOfFile / total;
            flow->part = static_cast<int32_t>(std::min<uint64_t>(part, kPartsOfFile));
            return !flow->stops;
        };
        Outcome outcome;
        FileStep& step = outcome.step;
        step.path = file.from.empty() ? file.path : file.from;
        step.now = way.target;
        outcome.error = (moves ? MoveWhole : CopyWhole)(file.path, way.target, way.inTheWay, news,
                                                        &step.replaced);
        if (!moves) step.copy = StampOf(way.target);
        return outcome;
    };
    const auto total = static_cast<int32_t>(std::min<size_t>(files_.size(), 1'000'000));
    const auto begin = static_cast<int32_t>(std::min<size_t>(at_, 1'000'000));
    DWORD stopped = 0;
    const auto waiting = [&] {
        if (!tell(file.path, begin * kPartsOfFile + flow->part, total * kPartsOfFile) &&
            !flow->stops.exchange(true)) {
            stopped = GetTickCount();
        }
        return !flow->stops || GetTickCount() - stopped < kStopMilliseconds;
    };
    std::optional<Outcome> outcome = CallInBackground<Outcome>(transfer, waiting);
    flow->stops = true;  // who is left behind
    // Many small files are as long as a large one.
    if (outcome && !tell(file.path, (begin + 1) * kPartsOfFile, total * kPartsOfFile))
        isStopped_ = true;
    return outcome;
}

void FileTransfer::Fail(const TransferredFile& file, DWORD error) {
    failures_.push_back(L"「" + file.name + L"」: " + ReasonOf(error));
}

std::wstring FileTransfer::Note() const {
    if (!done_.empty()) {
        const std::wstring name = FileNameOf(RemoveBackslash(folder_));
        return (done_.size() == 1 ? FileNameOf(done_.front().now) : Several(done_.size())) +
               L" を " + (name.empty() ? folder_ : name) + L" に" + What() + L"しました" +
               kUndoHint;
    }
    if (isStopped_) return What() + L"を中止しました。";
    if (files_.size() != 1) return {};
    if (itself_ > 0) return files_.front().name + L" はすでにこのフォルダにあります。";
    if (same_ > 0) return L"同じ内容の " + files_.front().name + L" がすでにあります。";
    return {};
}

std::wstring FileTransfer::Problems() const {
    const bool isOne = files_.size() == 1;
    if (failures_.empty() && (isOne || itself_ + same_ == 0)) return {};
    std::wstring text;
    if (!isOne) {
        text = Several(files_.size()) + L"のうち、" + std::to_wstring(done_.size()) + L" 個を" +
               What() + L"しました。\r\n";
        const auto count = [&](int number, const wchar_t* why) {
            if (number > 0) text += L"・" + std::to_wstring(number) + L" 個は" + why + L"\r\n";
        };
        count(itself_, L"、すでにこのフォルダにあります。");
        count(same_, L"、同じ内容のファイルがすでにあるため、そのままです。");
        count(skipped_, L"スキップしました。");
    }
    if (failures_.empty()) return text;
    text += (isOne ? std::wstring() : L"\r\n") + What() + L"できませんでした。\r\n";
    for (size_t i = 0; i < std::min(failures_.size(), kMostTold); ++i)
        text += L"\r\n" + failures_[i];
    if (failures_.size() > kMostTold)
        text += L"\r\nほか " + std::to_wstring(failures_.size() - kMostTold) + L" 個";
    return text;
}

}  // namespace tessary
