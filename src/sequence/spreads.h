// Which entries of a list lie side by side when it is read as a book: by twos, but for what stands
// alone. It knows no pictures; whoever has seen an entry tells what it is.
#pragma once

#include <cstdint>
#include <set>

namespace tessary {

// Neighbouring entries that are seen at once.
struct Spread {
    int first = 0;
    int count = 1;  // 1 or 2

    int Last() const { return first + count - 1; }
    bool operator==(const Spread&) const = default;
};

class Spreads {
  public:
    // Begins anew unless `revision` is that of the last call: what was told is of another list
    // then. `coverIsAlone`: the first entry has no neighbour.
    void Follow(uint64_t revision, int count, bool coverIsAlone);

    // Whether the entry stands alone: it is wider than high, or no single page.
    void Tell(int index, bool isAlone);

    // The one that the entry is in; of what nobody has told anything yet it is taken for a page.
    Spread At(int index) const;

    // Has been seen like this and stays so, whatever is told of others: so the way back is that of
    // the way there.
    void Keep(const Spread& spread);

    // Moves on by one entry what lies side by side from the one on that this entry is in, as after
    // a page that is missing. True when that changes something.
    bool Shift(int index);

  private:
    uint64_t revision_ = 0;
    int count_ = 0;
    bool coverIsAlone_ = false;
    std::set<int> alone_;
    std::set<int> begins_;  // entries that a spread begins with
};

}  // namespace tessary
