// What is listed of a folder or an archive, and in which order.
#pragma once

#include <cstdint>

#include "app/base/entry_order.h"

namespace tessary {

// What becomes of files and members that no plug-in names in its patterns: values of
// GeneralSettings::unclaimed.
constexpr int16_t kUnclaimedListed = 0;  // they are listed, and steps look into them
constexpr int16_t kUnclaimedPassed = 1;  // they are listed, and steps pass them by unseen
constexpr int16_t kUnclaimedHidden = 2;  // they are not listed, unless there is nothing else

struct ListingRules {
    EntryOrder order{};
    int16_t unclaimed = kUnclaimedHidden;

    bool operator==(const ListingRules&) const = default;
};

// As the settings have them.
ListingRules ChosenListingRules();

}  // namespace tessary
