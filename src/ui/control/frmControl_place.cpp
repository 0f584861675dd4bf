// Where the user is among his files: the title, the slider, and the way that it leads.
#include "ui/control/frmControl.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

// Changes that follow each other at once are told once.
constexpr UINT kPlaceMilliseconds = 30;

}  // namespace

void frmControl::PlaceChanged() {
    if (formLoaded_ && !placeDue_.IsRunning()) placeDue_.Start(kPlaceMilliseconds);
}

// At the end of what is being loaded: until then the view has what was shown before.
void frmControl::TellPlace() {
    if (formLoaded_ && IsReadUnderWay()) return PlaceChanged();
    placeDue_.Stop();
    if (!formLoaded_) return;
    FollowMembers();
    placeSlider_.Show(SelectedPlace(sequence_));
    window_.TellPlace(ShownPlaceText(sequence_, shownPath_));
}

// The list may have become another one since the slider was taken. A wish: it may come again while
// that is being loaded.
void frmControl::GoTo(const EntryPlace& place) {
    const int count = place.isMember && sequence_.IsInArchive() ? sequence_.Members().Count()
                      : place.isMember                          ? 0
                                                                : sequence_.Files().Count();
    if (count != place.count) return PlaceChanged();
    player_.HaltTimer();
    if (!place.isMember) sequence_.GoOn();
    EndMotion();
    if (IsLoading()) {
        place.isMember ? sequence_.Members().Select(place.index)
                       : sequence_.Files().Select(place.index);
        return;
    }
    place.isMember ? sequence_.Members().SetCursor(place.index)
                   : sequence_.Files().SetCursor(place.index);
    wishes_.Click(!place.isMember, true, false);
    WishIsThere();
}

}  // namespace tessary
