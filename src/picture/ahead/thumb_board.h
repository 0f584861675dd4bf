// Which small pictures are wanted, and those that are there: between lists on the screen and the
// threads that read.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "picture/ahead/ahead_board.h"
#include "picture/ahead/shrunk_picture.h"
#include "picture/ahead/thumb_packs.h"

namespace tessary {

// What a small picture is of. The size and time are those that its list knows, in whatever unit:
// with others it is another picture.
struct ThumbEntry {
    AheadEntry entry{};
    uint64_t size = 0;
    uint64_t time = 0;

    bool operator==(const ThumbEntry&) const = default;
};

enum class ThumbState {
    kComing,  // or not asked for yet
    kThere,
    kFailed,     // there is no picture in it that could be read
    kLeftAlone,  // where it lies nothing is read unasked
};

struct Thumb {
    ThumbState state = ThumbState::kComing;
    std::shared_ptr<const Picture> picture{};  // of 24 bits, where it is there
};

// How they are to be.
struct ThumbMaking {
    std::shared_ptr<const KnownPlugins> plugins{};
    ListingRules listing{};
    int side = 0;  // pixels
    ThumbGround ground{};

    bool IsLike(const ThumbMaking& other) const {
        return plugins == other.plugins && side == other.side &&
               ground.isSquares == other.ground.isSquares && ground.level == other.ground.level;
    }
};

class ThumbBoard final : public ReadingBoard {
  public:
    using MayRead = std::function<bool(const std::wstring& path)>;
    // `news` is called on the threads that read, whenever something has come.
    ThumbBoard(std::wstring folder, MayRead mayRead, std::function<void()> news)
        : packs_(std::move(folder)), mayRead_(std::move(mayRead)), news_(std::move(news)) {}

    // --- The window's thread ---

    // These, in that order; what else is being read is given up. Made otherwise than before, all
    // are made anew.
    void Want(std::vector<ThumbEntry> entries, const ThumbMaking& making);
    Thumb Find(const ThumbEntry& entry);
    // Nothing more is begun while there is a reason not to. From any thread.
    enum Reason : unsigned { kUserWaits = 1, kReadsAhead = 2 };
    void Hold(Reason reason, bool holds);
    // Gives up what is being read; it stays wanted.
    void GiveUp();
    // The same, and forgets what is wanted, what failed, and what was made.
    void Forget();
    bool IsBusy() const;
    void End();
    ThumbPacks& Packs() { return packs_; }

    // --- Those that read ---
    std::optional<AheadTask> TakeTask(DWORD milliseconds) override;
    void Finish(const AheadTask& task, std::optional<AheadPicture> picture) override;
    bool HasEnded() const override { return hasEnded_; }

  private:
    struct Kept {
        ThumbEntry entry;
        Thumb thumb;
        size_t size = 0;
    };
    struct UnderWay {
        ThumbEntry entry;
        std::shared_ptr<AheadProgress> progress;
        unsigned making;  // the number of making_
        std::wstring key{};
    };
    using KeptList = std::list<Kept>;
    using Name = std::pair<std::wstring, uint64_t>;

    static Name NameOf(const ThumbEntry& entry);
    KeptList::iterator FindKept(const ThumbEntry& entry);
    std::optional<UnderWay> Begin();
    void Keep(const ThumbEntry& entry, Thumb thumb);
    void EndOf(const UnderWay& under);

    mutable std::mutex mutex_;
    std::condition_variable wanted_;
    std::vector<ThumbEntry> entries_;
    std::set<Name> wantedNames_;  // of these
    ThumbMaking making_;
    unsigned makings_ = 0;  // how many there were
    KeptList kept_;         // what was used last is in front
    std::map<Name, KeptList::iterator> places_;
    size_t keptBytes_ = 0;
    std::vector<UnderWay> underWay_;
    unsigned held_ = 0;  // bits of Reason
    std::atomic<bool> hasEnded_ = false;
    ThumbPacks packs_;
    MayRead mayRead_;
    std::function<void()> news_;
};

}  // namespace tessary
