// Where the user is in what he has opened: what of it is worth remembering, and where he may go on.
#pragma once

#include <string>
#include <vector>

#include "places/place.h"

namespace tessary {

// He visits two things at a time, the folder and the archive (or file with pages) in it. Where he
// stopped there the last time stays remembered until he moves in it: who only looks at the first
// page has not gone back there.
class Visits {
  public:
    // Something is opened by hand, which begins new visits: a folder (with a trailing backslash,
    // maybe with those below it), or else (empty).
    void Begin(const std::wstring& folder);

    // Told of each place that is shown. True when he has come into an archive in which he may go
    // on.
    bool Show(const Place& place);
    const Place& Shown() const { return shown_; }

    // Where he may go on, of the folder while he is where he has opened it; none when there is
    // nothing, or he is there.
    Place Offer() const;
    // He has gone on there: that is over.
    void DropOffer();

    // A file has another path now.
    void Follow(const std::wstring& path, const std::wstring& newPath);

    // Puts what is new into the memory; nothing when nothing has changed.
    void Keep();
    // What is seen now counts as not seen, and there is no offer.
    void Forget();

  private:
    struct Visit {
        std::wstring container;  // empty: there is none
        Place first;             // that was seen
        Place last;
        Place stop;          // of the last visit
        bool moved = false;  // he has left the first
        bool isNew = false;  // `last` is not in the memory yet

        bool Enter(const std::wstring& where, const Place& place);
    };

    std::wstring FolderFor(const std::wstring& file) const;

    std::wstring opened_;     // the folder
    bool wasOpened_ = false;  // and he is still at what it began with
    Visit folder_;            // whose places are files
    Visit archive_;
    Place shown_;
    bool isKept_ = true;  // shown_ is in the memory
};

}  // namespace tessary
