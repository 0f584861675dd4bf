#include "picture/ahead/ahead_rules.h"

#include <windows.h>

#include <algorithm>
#include <thread>

#include "app/base/distant_file.h"

namespace tessary {
namespace {

constexpr size_t kDriveLength = 3;  // as `C:\`; other paths are a network's

constexpr unsigned kMostThreads = 4;

constexpr uint64_t kMostBytes = uint64_t{sizeof(void*) == 4 ? 512 : 4096} << 20;
constexpr uint64_t kShareOfRoom = 4;  // of the addresses that are free, for one block must be found

// SystemStatusFlag of SYSTEM_POWER_STATUS, which was reserved before Windows 10.
constexpr BYTE kBatterySaverOn = 1;

// The kind of drive of a file that nobody has to fetch.
UINT DriveOf(const std::wstring& path) {
    const bool hasDrive = path.size() > kDriveLength && path[1] == L':';
    if (!hasDrive || IsNotOnThisDisk(path)) return DRIVE_UNKNOWN;
    return GetDriveTypeW(path.substr(0, kDriveLength).c_str());
}

}  // namespace

bool MayBeReadAhead(const std::wstring& path) {
    const UINT type = DriveOf(path);
    return type == DRIVE_FIXED || type == DRIVE_RAMDISK;
}

bool MayBeShownSmall(const std::wstring& path) {
    const UINT type = DriveOf(path);
    return type == DRIVE_FIXED || type == DRIVE_RAMDISK || type == DRIVE_REMOVABLE ||
           type == DRIVE_CDROM;
}

bool SavesBattery() {
    SYSTEM_POWER_STATUS status{};
    return GetSystemPowerStatus(&status) != FALSE && status.Reserved1 == kBatterySaverOn;
}

int ReadingThreads() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, kMostThreads));
}

size_t AheadBudget(int32_t megabytes) {
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    if (!GlobalMemoryStatusEx(&memory)) return 0;
    const uint64_t wanted =
        megabytes > 0 ? static_cast<uint64_t>(megabytes) << 20 : memory.ullAvailPhys / 4;
    return static_cast<size_t>(
        std::min<uint64_t>({wanted, memory.ullAvailVirtual / kShareOfRoom, kMostBytes}));
}

}  // namespace tessary
