// A way through the files in random order, and back.
#pragma once

#include <optional>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include "sequence/file_sequence.h"

namespace tessary {

// Each file comes once a round. The list may change meanwhile: what has come stays so, and what is
// new comes too. Indexes are those of `files` as it is at the call.
class RandomWay {
  public:
    using Files = FileSequence::FileEntries;

    explicit RandomWay(uint32_t seed) : random_(seed) {}

    // The file behind the selected one: where the user has gone back, as he came, else one of known
    // kind that has not come yet. Nothing when all have, unless it `goesOn` with another round, and
    // when the search was ended.
    std::optional<int> Next(const Files& files, bool goesOn, KindSource& kinds);
    // The file that came before the selected one; nothing where the way begins.
    std::optional<int> Back(const Files& files);
    // What Next may answer. Empty: nobody knows.
    std::wstring Coming(const Files& files) const;

    // Whether the selected file is on the way, and others come before it.
    bool LeadsBack(const Files& files) const { return at_ > 0 && IsOnWay(files); }
    void Forget();

  private:
    bool IsOnWay(const Files& files) const {
        return at_ < way_.size() && way_[at_] == files.Current();
    }
    void Join(const Files& files);
    std::optional<int> Draw(const Files& files, KindSource& kinds);
    bool Shuffle(const Files& files);
    bool MayCome(const Files& files, int index) const;

    std::mt19937 random_;
    std::vector<std::wstring> way_;          // the paths in the order in which they came
    size_t at_ = 0;                          // the selected one's place
    std::unordered_set<std::wstring> come_;  // in this round, or found to be nothing
    std::vector<int> coming_;                // the last one next; some may have come meanwhile
};

}  // namespace tessary
