// The pictures that are kept for the next moment.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "picture/ahead/ahead_picture.h"

namespace tessary {

class AheadCache {
  public:
    // How many bytes of pictures are kept at most.
    void SetBudget(size_t bytes);

    // What is likely to be asked for, the likeliest first. Of what is not among it only the newest
    // stay: in their memory the next pictures come sooner than in fresh one. When there is no room
    // for all, that goes first, the oldest before the others, and then what is wanted, from its
    // end.
    void SetWanted(std::vector<AheadEntry> wanted);

    // In place of one of the same entry. It is not kept when it has no room itself.
    void Put(AheadPicture picture);

    bool Has(const AheadEntry& entry) const;
    // One on the same memory. Nothing, and it is not kept any more, when the file has changed
    // since.
    std::optional<AheadPicture> Find(const AheadEntry& entry, const FileStamp& stamp);

    void Drop(const AheadEntry& entry) {
        std::erase_if(kept_, [&](const AheadPicture& kept) { return kept.entry == entry; });
    }
    void Clear() { kept_.clear(); }

  private:
    void MakeRoom();
    bool IsWanted(const AheadPicture& kept) const;
    std::vector<AheadPicture>::iterator LeastWanted();

    std::vector<AheadPicture> kept_;  // the newest last
    std::vector<AheadEntry> wanted_;
    size_t budget_ = 0;
};

}  // namespace tessary
