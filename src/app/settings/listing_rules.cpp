#include "app/settings/listing_rules.h"

#include <algorithm>

#include "app/settings/modValue.h"

namespace tessary {

ListingRules ChosenListingRules() {
    const GeneralSettings& general = Values().general;
    const auto by = static_cast<OrderBy>(std::clamp<int>(general.listOrder, 0, kOrderCount - 1));
    return {.order = {by, general.listDescending != 0, static_cast<uint32_t>(general.orderSeed)},
            .unclaimed = general.unclaimed};
}

}  // namespace tessary
