#include "picture/ahead/thumbnails.h"

#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/settings/modValue.h"
#include "picture/ahead/ahead_rules.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr ULONGLONG kFarewell = 300;  // milliseconds for all threads to end
constexpr DWORD kBeat = 10;
constexpr DWORD kPatience = 8000;  // one that hangs is not to keep the others

}  // namespace

void Thumbnails::Begin(int threads, ConnectorMaker connect, const std::wstring& folder) {
    count_ = threads;
    source_ = {.connect = std::move(connect),
               .mayRead = MayBeShownSmall,
               .takesOwnColors = false,
               .patience = kPatience};
    board_ = std::make_shared<ThumbBoard>(folder.empty() ? folder : folder + LR"(Thumbnails\)",
                                          MayBeShownSmall, [news = news_] {
                                              const std::lock_guard lock(news->mutex);
                                              if (news->tell) news->tell();
                                          });
}

void Thumbnails::End() {
    if (board_) board_->End();
    const ULONGLONG begin = GetTickCount64();
    for (const auto& worker : workers_) {
        const ULONGLONG waited = GetTickCount64() - begin;
        worker->HasEndedWithin(static_cast<DWORD>(kFarewell - std::min(waited, kFarewell)));
    }
    workers_.clear();
    board_.reset();
}

std::shared_ptr<const KnownPlugins> Thumbnails::Plugins() {
    KnownPlugins known = KnownOf(SusieCollection());
    if (plugins_ == nullptr || *plugins_ != known) {
        plugins_ = std::make_shared<const KnownPlugins>(std::move(known));
    }
    return plugins_;
}

void Thumbnails::Want(std::vector<ThumbEntry> entries, int side, bool mayKeep) {
    if (!board_) return;
    isForgotten_ = false;
    if (SavesBattery()) entries.clear();
    const GeneralSettings& general = Values().general;
    const int32_t megabytes = mayKeep ? std::max(general.thumbMegabytes, 0) : 0;
    board_->Packs().SetBudget(static_cast<uint64_t>(megabytes) << 20);
    // They own what they touch. At the program's end they end with it.
    Trapped([&] {
        while (!entries.empty() && static_cast<int>(workers_.size()) < count_) {
            workers_.push_back(std::make_unique<Worker>([board = board_, source = source_] {
                SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
                ReadForBoard(board, source);
            }));
        }
    });
    board_->Want(std::move(entries),
                 {.plugins = Plugins(),
                  .listing = ChosenListingRules(),
                  .side = side,
                  .ground = {general.backdrop == kBackdropSquares, FlatBackdrop(general)}});
}

Thumb Thumbnails::Find(const ThumbEntry& entry) {
    return board_ ? board_->Find(entry) : Thumb();
}

void Thumbnails::Hold(bool holds) {
    if (board_) board_->Hold(ThumbBoard::kUserWaits, holds);
}

std::function<void(bool)> Thumbnails::HolderAhead() const {
    return [board = board_](bool holds) {
        if (board) board->Hold(ThumbBoard::kReadsAhead, holds);
    };
}

void Thumbnails::Rest() {
    if (!board_) return;
    board_->GiveUp();
    const ULONGLONG begin = GetTickCount64();
    while (board_->IsBusy() && GetTickCount64() - begin < kFarewell)
        Sleep(kBeat);
}

void Thumbnails::Forget() {
    plugins_.reset();
    if (!board_) return;
    board_->Forget();
    isForgotten_ = true;
    const std::lock_guard lock(news_->mutex);
    if (news_->tell) news_->tell();
}

void Thumbnails::DeleteKept() {
    if (!board_) return;
    board_->Packs().SetBudget(0);
    board_->Packs().Clear();
}

}  // namespace tessary
