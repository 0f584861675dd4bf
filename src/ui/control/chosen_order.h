// The order that the user has chosen for what he views.
#pragma once

#include <string>
#include <vector>

#include "app/settings/listing_rules.h"
#include "picture/read/arrangement.h"
#include "places/place_memory.h"

namespace tessary {

// Of an archive (full path) or a folder (with a trailing backslash); the one chosen last for any,
// where nothing was chosen for it or it is none (empty).
inline EntryOrder OrderFor(const std::wstring& container) {
    const EntryOrder general = ChosenListingRules().order;
    return container.empty() ? general : OrderOf(container).value_or(general);
}

// Files or members that are arranged by the settings.
template <class Entry>
void PutInOrder(const EntryOrder& order, std::vector<Entry>& entries) {
    if (order != ChosenListingRules().order) SortBy(order, entries);
}

}  // namespace tessary
