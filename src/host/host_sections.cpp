#include "host/host_sections.h"

#include <algorithm>
#include <iterator>

namespace tessary {
namespace {

constexpr size_t kMostMapped = 3;

}  // namespace

HostSections::Lease::~Lease() {
    if (sections_ != nullptr && id_ != 0) sections_->returned_.push_back(id_);
}

std::optional<HostSections::Lease> HostSections::Open(HANDLE process, const WireSection& wire) {
    const auto known = std::ranges::find(mapped_, wire.id, &Mapped::id);
    std::shared_ptr<Section> section;
    if (wire.id != 0 && known != mapped_.end() && known->section->Bytes().size() >= wire.size) {
        section = known->section;
        std::rotate(known, std::next(known), mapped_.end());
    } else {
        HANDLE taken = nullptr;
        if (!DuplicateHandle(process, reinterpret_cast<HANDLE>(static_cast<uintptr_t>(wire.handle)),
                             GetCurrentProcess(), &taken, SECTION_MAP_READ | SECTION_QUERY, FALSE,
                             0)) {
            return std::nullopt;
        }
        std::optional<Section> opened =
            Section::Open(UniqueSection(taken), wire.size, Section::Access::kRead);
        if (!opened) return std::nullopt;
        section = std::make_shared<Section>(*std::move(opened));
        std::erase_if(mapped_, [&](const Mapped& mapped) { return mapped.id == wire.id; });
        if (wire.id != 0) mapped_.push_back({wire.id, section});
    }
    if (mapped_.size() > kMostMapped) mapped_.erase(mapped_.begin());
    return Lease(shared_from_this(), std::move(section), static_cast<size_t>(wire.size), wire.id);
}

}  // namespace tessary
