#include "host/host_sections.h"

#include <algorithm>
#include <iterator>

namespace tessary {
namespace {

// Of those that nobody reads, as the host keeps them.
constexpr size_t kMostIdle = 6;
constexpr size_t kMostIdleBytes = size_t{160} << 20;

bool IsMemoryShort(DWORD error) {
    return error == ERROR_NOT_ENOUGH_MEMORY || error == ERROR_OUTOFMEMORY ||
           error == ERROR_COMMITMENT_LIMIT;
}

}  // namespace

HostSections::Lease::~Lease() {
    if (sections_ != nullptr) sections_->Return(id_);
}

void HostSections::Return(uint32_t id) {
    const std::lock_guard lock(mutex_);
    if (id != 0) returned_.push_back(id);
}

HostSections::Opened HostSections::Map(HANDLE process, const WireSection& wire,
                                       std::shared_ptr<Section>& section) {
    HANDLE taken = nullptr;
    if (!DuplicateHandle(process, reinterpret_cast<HANDLE>(static_cast<uintptr_t>(wire.handle)),
                         GetCurrentProcess(), &taken, SECTION_MAP_READ | SECTION_QUERY, FALSE, 0)) {
        return Opened::kNoSection;
    }
    std::optional<Section> opened =
        Section::Open(UniqueSection(taken), wire.size, Section::Access::kRead);
    if (!opened) return IsMemoryShort(GetLastError()) ? Opened::kNoMemory : Opened::kNoSection;
    section = std::make_shared<Section>(*std::move(opened));
    return Opened::kOpen;
}

HostSections::Opened HostSections::Open(HANDLE process, const WireSection& wire,
                                        std::optional<Lease>& lease) {
    const auto known = std::ranges::find(mapped_, wire.id, &Mapped::id);
    std::shared_ptr<Section> section;
    if (wire.id != 0 && known != mapped_.end() && known->section->Bytes().size() >= wire.size) {
        section = known->section;
        std::rotate(known, std::next(known), mapped_.end());
    } else {
        Opened opened = Map(process, wire, section);
        if (opened == Opened::kNoMemory) {
            mapped_.clear();  // what nobody reads is in the way
            opened = Map(process, wire, section);
        }
        if (opened != Opened::kOpen) {
            Return(wire.id);
            return opened;
        }
        std::erase_if(mapped_, [&](const Mapped& mapped) { return mapped.id == wire.id; });
        if (wire.id != 0) mapped_.push_back({wire.id, section});
    }
    DropOldest();
    lease.emplace(shared_from_this(), std::move(section), static_cast<size_t>(wire.size), wire.id);
    return Opened::kOpen;
}

// What somebody reads stays mapped anyway: the frames of an animation are many, and come again.
void HostSections::DropOldest() {
    const auto isIdle = [](const Mapped& mapped) { return mapped.section.use_count() == 1; };
    for (;;) {
        size_t count = 0;
        size_t bytes = 0;
        for (const Mapped& mapped : mapped_) {
            if (!isIdle(mapped)) continue;
            ++count;
            bytes += mapped.section->Bytes().size();
        }
        if (count <= 1 || (count <= kMostIdle && bytes <= kMostIdleBytes)) return;
        mapped_.erase(std::ranges::find_if(mapped_, isIdle));
    }
}

}  // namespace tessary
