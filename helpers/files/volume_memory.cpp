#include "helpers/files/volume_memory.h"

#include "helpers/files/file_name.h"

namespace tessary::files {

// Its number: another stick may get the same letter. Some have none, but differ by their letters.
std::wstring VolumeOf(HANDLE file, const std::wstring& name) {
    BY_HANDLE_FILE_INFORMATION information{};
    GetFileInformationByHandle(file, &information);
    return std::to_wstring(information.dwVolumeSerialNumber) + L' ' + RootOf(name);
}

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
