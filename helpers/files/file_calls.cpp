#include "helpers/files/file_calls.h"

#include "helpers/files/file_name.h"

namespace tessary::files {
namespace {

constexpr LONG kStatusDeletePending = static_cast<LONG>(0xC0000056);

// GetLastError has one number for this and for what is not allowed. Entries of ntdll.dll are not in
// every import library.
LONG LastStatus() {
    using RtlGetLastNtStatus = LONG(WINAPI*)();
    static const auto lastStatus = reinterpret_cast<RtlGetLastNtStatus>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetLastNtStatus")));
    return lastStatus != nullptr ? lastStatus() : 0;
}

}  // namespace

HANDLE FileCalls::Create(const std::wstring& name, DWORD access, DWORD sharing, DWORD creation,
                         DWORD flags) {
    return CreateFileW(name.c_str(), access, sharing, nullptr, creation, flags, nullptr);
}

bool FileCalls::WasDeletePending() {
    return LastStatus() == kStatusDeletePending;
}

bool FileCalls::SetInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* information,
                               DWORD size) {
    return SetFileInformationByHandle(file, kind, information, size) != FALSE;
}

bool FileCalls::Move(const std::wstring& name, const std::wstring& newName, DWORD flags) {
    return MoveFileExW(name.c_str(), newName.c_str(), flags) != FALSE;
}

DWORD FileCalls::Attributes(const std::wstring& name) {
    return GetFileAttributesW(name.c_str());
}

bool FileCalls::IsRemote(const std::wstring& name) {
    constexpr size_t kPrefix = 4;  // characters of `\\?\`
    const std::wstring root = RootOf(name);
    return root.empty() || root.starts_with(LR"(\\?\UNC\)") ||
           remote_.Get(root, [&] { return GetDriveTypeW(root.c_str() + kPrefix) == DRIVE_REMOTE; });
}

// Its number: another stick may get the same letter. Some have none, but differ by their letters.
std::wstring FileCalls::Volume(HANDLE file, const std::wstring& name) {
    const std::wstring root = RootOf(name);
    const DWORD serial = serials_.Get(root, [&] {
        BY_HANDLE_FILE_INFORMATION information{};
        GetFileInformationByHandle(file, &information);
        return information.dwVolumeSerialNumber;
    });
    return std::to_wstring(serial) + L' ' + root;
}

void FileCalls::Pause(DWORD milliseconds) {
    Sleep(milliseconds);
}

FileCalls& SystemFileCalls() {
    static FileCalls calls;
    return calls;
}

}  // namespace tessary::files
