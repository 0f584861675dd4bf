#include "ui/control/place_slider.h"

#include <algorithm>
#include <utility>

namespace tessary {
namespace {

constexpr UINT kRestMilliseconds = 250;
constexpr UINT kAtOnce = 1;

// The page keys cross the whole in so many steps.
constexpr int kPagesToCross = 20;

}  // namespace

void PlaceSlider::Create(HWND parent, const wchar_t* name) {
    slider_.Create(parent);
    slider_.SetText(name);
    slider_.OnChange([this] { Moved(); });
}

// Positions count from 1, which is what readers of the screen tell.
void PlaceSlider::Show(const EntryPlace& place) {
    if (slider_.Handle() == nullptr || IsHeld()) return;
    if (place.count != place_.count) {
        slider_.SetRange(1, std::max(place.count, 1), 1,
                         std::clamp(place.count / kPagesToCross, 1, place.count + 1));
    }
    place_ = place;
    slider_.SetEnabled(place.count > 1);
    if (slider_.Position() != place.index + 1) slider_.SetPosition(place.index + 1);
}

void PlaceSlider::Moved() {
    const int index = slider_.Position() - 1;
    const bool isNews = std::exchange(place_.index, index) != index;
    if (isNews) {
        rests_.Start(kRestMilliseconds);
        events_.passes(place_);
    }
    if (!slider_.HasCome()) return;
    // What the user has rested at is chosen already. The control may still hold the mouse.
    if (rests_.IsRunning()) rests_.Start(kAtOnce);
    events_.released();
}

void PlaceSlider::Choose() {
    rests_.Stop();
    events_.chooses(EntryPlace(place_));
}

}  // namespace tessary
