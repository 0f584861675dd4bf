#include "picture/ahead/pictures_ahead.h"

#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/settings/modValue.h"
#include "picture/ahead/ahead_rules.h"
#include "plugin/modSusie.h"

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

void PicturesAhead::Begin(int threads, ConnectorMaker connect) {
    threads_ = threads;
    connect_ = std::move(connect);
    board_ = std::make_shared<AheadBoard>(AheadBudget());
}

void PicturesAhead::End() {
    threads_ = 0;
    if (board_ != nullptr) board_->End();
    const ULONGLONG begin = GetTickCount64();
    for (const auto& worker : workers_) {
        const ULONGLONG waited = GetTickCount64() - begin;
        worker->HasEndedWithin(static_cast<DWORD>(kFarewell - std::min(waited, kFarewell)));
    }
    workers_.clear();
    board_.reset();
    plugins_.reset();
}

// They own what they touch. At the program's end they end with it.
void PicturesAhead::StartThreads() {
    if (!workers_.empty()) return;
    Trapped([&] {
        for (int i = 0; i < threads_; ++i)
            workers_.push_back(std::make_unique<Worker>(
                [board = board_, connect = connect_] { ReadAhead(board, connect); }));
    });
}

// What was read by others is not to be shown.
std::shared_ptr<const KnownPlugins> PicturesAhead::Plugins() {
    KnownPlugins known = KnownOf(SusieCollection());
    if (plugins_ == nullptr || *plugins_ != known) {
        if (plugins_ != nullptr) board_->Forget();
        plugins_ = std::make_shared<const KnownPlugins>(std::move(known));
    }
    return plugins_;
}

void PicturesAhead::Plan(std::vector<AheadEntry> next, AheadEntry shown, PreparePicture prepare) {
    if (board_ == nullptr) return;
    if (Values().general.readAhead == 0) return Forget();
    StartThreads();
    if (SavesBattery()) next.clear();
    board_->SetPlan({.next = std::move(next),
                     .shown = std::move(shown),
                     .plugins = Plugins(),
                     .prepare = std::move(prepare),
                     .budget = AheadBudget()});
}

std::optional<AheadPicture> PicturesAhead::Take(const AheadEntry& entry) {
    if (board_ == nullptr) return std::nullopt;
    const std::optional<FileStamp> stamp = StampOf(entry.path);
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

bool PicturesAhead::Has(const AheadEntry& entry) {
    const std::optional<FileStamp> stamp = board_ != nullptr ? StampOf(entry.path) : std::nullopt;
    return stamp && board_->Find(entry, *stamp);
}

void PicturesAhead::Keep(AheadPicture picture) {
    if (board_ != nullptr && Values().general.readAhead != 0) board_->Put(std::move(picture));
}

void PicturesAhead::Rest() {
    if (board_ == nullptr) return;
    AheadPlan nothing;
    nothing.budget = AheadBudget();
    board_->SetPlan(std::move(nothing));
    const ULONGLONG begin = GetTickCount64();
    while (board_->IsBusy() && GetTickCount64() - begin < kFarewell)
        board_->WaitForEnd(kBeat);
}

void PicturesAhead::Forget() {
    if (board_ != nullptr) board_->Forget();
    plugins_.reset();
}

PicturesAhead& Ahead() {
    static PicturesAhead ahead;
    return ahead;
}

}  // namespace tessary
