// The looks of the control bar's lists, and the small pictures in them.
#include <algorithm>
#include <iterator>

#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "places/place_memory.h"
#include "res/resource.h"
#include "ui/control/frmControl.h"

namespace tessary {
namespace {

constexpr int kAround = 24;  // entries before and behind those in sight that are made as well

}  // namespace

void frmControl::RegisterLooks() {
    const auto choose = [this](int first, int count, int16_t GeneralSettings::*value) {
        for (int16_t choice = 0; choice < count; ++choice) {
            window_.Commands().Register(
                first + choice,
                {.run =
                     [this, value, choice] {
                         Values().general.*value = choice;
                         TakeLooks();
                     },
                 .checked = [value, choice] { return Values().general.*value == choice; },
                 .whileLoading = true});
        }
    };
    choose(commandFileLook_0, kLastLook + 1, &GeneralSettings::fileLook);
    choose(commandMemberLook_0, kLastLook + 1, &GeneralSettings::memberLook);
    choose(commandThumbSize_0, static_cast<int>(std::size(kThumbSides)),
           &GeneralSettings::thumbSize);
    shownFiles_.OnSight([this] { WantThumbs(); });
    shownMembers_.OnSight([this] { WantThumbs(); });
}

void frmControl::TakeLooks() {
    if (Handle() == nullptr) return;
    const GeneralSettings& general = Values().general;
    const int side = kThumbSides[std::clamp<int>(general.thumbSize, 0, std::size(kThumbSides) - 1)];
    const auto take = [side](VirtualList& list, int16_t look) {
        list.SetLook(look == kLookNames ? 0 : side, look != kLookPictures);
    };
    take(listFileName_, general.fileLook);
    take(listArchiveFile_, general.memberLook);
    shownFiles_.TellSightAnew();
    shownMembers_.TellSightAnew();
    if (general.fileLook == kLookNames || general.memberLook == kLookNames) WantThumbs();
    thumbsTold_ = std::make_shared<std::atomic<bool>>(false);
    // On other threads: one message for all that comes before it is heard.
    Ahead().Thumbs().OnNews([window = Handle(), isTold = thumbsTold_] {
        if (!isTold->exchange(true)) PostMessageW(window, kThumbsMessage, 0, 0);
    });
}

void frmControl::ShowThumbs() {
    *thumbsTold_ = false;
    if (Ahead().Thumbs().IsForgotten()) WantThumbs();
    listFileName_.ShowNews();
    listArchiveFile_.ShowNews();
}

// What is in sight comes first.
void frmControl::WantThumbs() {
    std::vector<ThumbEntry> wanted = shownFiles_.Thumbs(0);
    for (const int around : {0, kAround}) {
        if (around > 0) std::ranges::copy(shownFiles_.Thumbs(around), std::back_inserter(wanted));
        std::ranges::copy(shownMembers_.Thumbs(around), std::back_inserter(wanted));
    }
    const int side = std::max(listFileName_.PictureSide(), listArchiveFile_.PictureSide());
    Ahead().Thumbs().Want(std::move(wanted), side, IsRemembering());
}

}  // namespace tessary
