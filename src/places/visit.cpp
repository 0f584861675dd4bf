#include "places/visit.h"

#include "app/base/paths.h"
#include "app/base/text.h"
#include "places/place_memory.h"

namespace tessary {

// True when that is another container than before.
bool Visits::Visit::Enter(const std::wstring& where, const Place& place) {
    if (where != container) {
        *this = {.container = where, .first = place, .last = place, .stop = {}};
        if (!where.empty()) stop = StoppedAt(where);
        return true;
    }
    if (place == last) return false;
    moved = true;
    isNew = true;
    last = place;
    return false;
}

void Visits::Begin(const std::wstring& folder) {
    Keep();
    opened_ = folder;
    wasOpened_ = !folder.empty();
    folder_ = {};
    archive_ = {};
}

std::wstring Visits::FolderFor(const std::wstring& file) const {
    const bool isBelow = !opened_.empty() && file.size() > opened_.size() &&
                         EqualsIgnoreCase(file.substr(0, opened_.size()), opened_);
    return isBelow ? opened_ : FolderOf(file);
}

bool Visits::Show(const Place& place) {
    const std::wstring folder = FolderFor(place.file);
    if (place == shown_ && folder == folder_.container) return false;
    // What was left is asked for at once when he comes back to it.
    if (!archive_.container.empty() && archive_.container != place.file) Keep();
    shown_ = place;
    isKept_ = false;
    folder_.Enter(folder, {place.file});
    if (folder_.moved) wasOpened_ = false;
    const bool isInside = !place.member.empty() || place.page > 0;
    const bool entered = archive_.Enter(isInside ? place.file : std::wstring(), place);
    for (Visit* const visit : {&folder_, &archive_}) {
        if (visit->stop == visit->last) visit->stop = {};  // he is there
    }
    return entered && !archive_.stop.IsNone();
}

Place Visits::Offer() const {
    if (!archive_.stop.IsNone() && !(wasOpened_ && !folder_.stop.IsNone())) return archive_.stop;
    return folder_.stop.IsNone() ? Place() : StopWithin(folder_.stop);
}

void Visits::DropOffer() {
    folder_.stop = {};
    archive_.stop = {};
}

void Visits::Follow(const std::wstring& path, const std::wstring& newPath) {
    for (Place* const place : {&shown_, &folder_.first, &folder_.last, &folder_.stop,
                               &archive_.first, &archive_.last, &archive_.stop}) {
        if (EqualsIgnoreCase(place->file, path)) place->file = newPath;
    }
    if (EqualsIgnoreCase(archive_.container, path)) archive_.container = newPath;
}

void Visits::Keep() {
    for (Visit* const visit : {&folder_, &archive_}) {
        if (visit->isNew && !visit->container.empty()) KeepStop(visit->container, visit->last);
        visit->isNew = false;
    }
    if (!isKept_) KeepLastSeen(shown_);
    isKept_ = true;
}

void Visits::Forget() {
    DropOffer();
    folder_.isNew = false;
    archive_.isNew = false;
    isKept_ = true;
}

}  // namespace tessary
