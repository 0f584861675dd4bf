#include "helpers/files/volume_memory.h"

namespace tessary::files {

std::optional<bool> VolumeMemory::TakesMarkBack(const std::wstring& volume) {
    const std::lock_guard lock(mutex_);
    const auto known = volumes_.find(volume);
    if (known == volumes_.end()) return std::nullopt;
    return known->second;
}

void VolumeMemory::SetTakesMarkBack(const std::wstring& volume, bool takesItBack) {
    const std::lock_guard lock(mutex_);
    volumes_[volume] = takesItBack;
}

}  // namespace tessary::files
