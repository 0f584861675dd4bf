#include "picture/ahead/ahead_threads.h"

#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "picture/ahead/ahead_rules.h"
#include "plugin/host_state.h"

namespace tessary {
namespace {

constexpr DWORD kBeat = 10;           // milliseconds between two looks at whether to go on
constexpr DWORD kPatience = 5000;     // with a thread that tells nothing new
constexpr ULONGLONG kFarewell = 700;  // for all threads to end

bool IsWanted(const WaitedCall& call) {
    const CallWatcher& watcher = Caller().watcher;
    return !watcher || watcher(call) != CallWish::kStops;
}

}  // namespace

AheadThreads::AheadThreads(int count, AheadSource source, std::function<void(bool)> busy)
    : count_(count),
      source_(std::move(source)),
      board_(std::make_shared<AheadBoard>(AheadBudget(), std::move(busy))) {}

AheadThreads::~AheadThreads() {
    board_->End();
    const ULONGLONG begin = GetTickCount64();
    for (const auto& worker : workers_) {
        const ULONGLONG waited = GetTickCount64() - begin;
        worker->HasEndedWithin(static_cast<DWORD>(kFarewell - std::min(waited, kFarewell)));
    }
}

// They own what they touch. At the program's end they end with it.
void AheadThreads::SetPlan(AheadPlan plan) {
    Trapped([&] {
        while (static_cast<int>(workers_.size()) < count_) {
            workers_.push_back(std::make_unique<Worker>(
                [board = board_, source = source_] { ReadForBoard(board, source); }));
        }
    });
    board_->SetPlan(std::move(plan));
}

std::optional<AheadPicture> AheadThreads::Await(const AheadEntry& entry) {
    if (!board_->Knows(entry)) return std::nullopt;
    const std::optional<FileStamp> stamp = ExactStampOf(entry.path);
    if (!stamp) return std::nullopt;
    const ULONGLONG begin = GetTickCount64();
    ULONGLONG sign = begin;
    WaitedCall call;
    call.mayTell = true;
    for (;;) {
        const std::shared_ptr<AheadProgress> progress = board_->ProgressOf(entry);
        if (std::optional<AheadPicture> picture = board_->Find(entry, *stamp)) return picture;
        if (progress == nullptr) return std::nullopt;
        const ULONGLONG now = GetTickCount64();
        if (std::exchange(call.done, progress->done) != call.done) sign = now;
        call.total = progress->total;
        call.age = static_cast<DWORD>(now - begin);
        call.silence = static_cast<DWORD>(now - sign);
        if (call.silence > kPatience || !IsWanted(call)) {
            progress->isWanted = false;
            return std::nullopt;
        }
        board_->WaitForEnd(kBeat);
    }
}

void AheadThreads::WaitForRest() {
    const ULONGLONG begin = GetTickCount64();
    while (board_->IsBusy() && GetTickCount64() - begin < kFarewell)
        board_->WaitForEnd(kBeat);
}

}  // namespace tessary
