#include "host32/section_stock.h"

#include <algorithm>
#include <utility>

namespace tessary {
namespace {

// What waits for its next use: small ones of several sizes, or a large one, which takes turns with
// that of the picture that is shown.
constexpr ptrdiff_t kMostFree = 6;
constexpr size_t kMostFreeBytes = size_t{160} << 20;

constexpr size_t kGranularity = 64 * 1024;  // as the system maps them

// A section that is much too large keeps memory from others.
bool Fits(size_t has, size_t needed) {
    return has >= needed && has / 2 <= std::max(needed, kGranularity);
}

}  // namespace

std::optional<SectionStock::Taken> SectionStock::Take(size_t size) {
    const auto rest = std::find_if(kept_.rbegin(), kept_.rend(), [&](const Kept& kept) {
        return kept.isFree && Fits(kept.section.Bytes().size(), size);
    });
    Kept* taken = rest == kept_.rend() ? nullptr : &*rest;
    const bool isNew = taken == nullptr;
    if (isNew) {
        const size_t whole = (size + kGranularity - 1) / kGranularity * kGranularity;
        std::optional<Section> section = Section::Make(whole);
        if (!section) {
            // What waits may be in its way.
            std::erase_if(kept_, [](const Kept& kept) { return kept.isFree; });
            section = Section::Make(whole);
        }
        if (!section) return std::nullopt;
        taken = &kept_.emplace_back(Kept{*std::move(section), ++lastId_, false});
    }
    taken->isFree = false;
    return Taken{taken->section.Bytes().first(size),
                 {reinterpret_cast<uintptr_t>(taken->section.Handle()), size, taken->id},
                 isNew};
}

void SectionStock::Return(uint32_t id) {
    const auto found = std::ranges::find(kept_, id, &Kept::id);
    if (found == kept_.end()) return;
    found->isFree = true;
    std::rotate(found, std::next(found), kept_.end());
    DropSuperfluous();
}

void SectionStock::DropSuperfluous() {
    for (;;) {
        ptrdiff_t count = 0;
        size_t bytes = 0;
        for (const Kept& kept : kept_) {
            if (!kept.isFree) continue;
            ++count;
            bytes += kept.section.Bytes().size();
        }
        if (count <= 1 || (count <= kMostFree && bytes <= kMostFreeBytes)) return;
        kept_.erase(std::ranges::find(kept_, true, &Kept::isFree));
    }
}

}  // namespace tessary
