#include "helpers/files/old_file.h"

#include <cstdint>
#include <vector>

namespace tessary::files {
namespace {

std::wstring FinalName(HANDLE file) {
    const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, VOLUME_NAME_DOS);
    std::wstring name(size, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file, name.data(), size, VOLUME_NAME_DOS);
    name.resize(length < size ? length : 0);
    return name;
}

// The access control list in a security descriptor; empty when the system does not tell.
std::vector<uint8_t> AccessOf(const std::wstring& name) {
    DWORD size = 0;
    GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<uint8_t> descriptor(size);
    if (!GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size,
                          &size)) {
        return {};
    }
    return descriptor;
}

// As it is, inherited entries included: the old file may have come from another folder.
void SetAccess(const std::wstring& name, std::vector<uint8_t>& descriptor) {
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    // Without the request, the mark of inheritance would be dropped.
    if (GetSecurityDescriptorControl(descriptor.data(), &control, &revision) &&
        (control & SE_DACL_AUTO_INHERITED) != 0) {
        SetSecurityDescriptorControl(descriptor.data(), SE_DACL_AUTO_INHERIT_REQ,
                                     SE_DACL_AUTO_INHERIT_REQ);
    }
    SetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, descriptor.data());
}

}  // namespace

std::wstring NameBehindLinks(const std::wstring& name) {
    const HANDLE file = CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) {
        const std::wstring behind = FinalName(file);
        CloseHandle(file);
        return behind.empty() ? name : behind;
    }
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesW(name.c_str());
    const bool isDeadLink = attributes != INVALID_FILE_ATTRIBUTES &&
                            (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
                            (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    SetLastError(error);
    return isDeadLink ? std::wstring() : name;
}

OldFile::OldFile(const std::wstring& name)
    : name_(name),
      exists_(GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data_) != FALSE) {}

bool OldFile::IsReplaceable() const {
    constexpr DWORD kNotReplaceable = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    return !exists_ || (data_.dwFileAttributes & kNotReplaceable) == 0;
}

DWORD OldFile::Attributes() const {
    constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                            FILE_ATTRIBUTE_ENCRYPTED | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    const DWORD kept = exists_ ? data_.dwFileAttributes & kKept : 0;
    return kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL;
}

void OldFile::PassOn(HANDLE newFile, const std::wstring& newName) const {
    if (!exists_) return;
    SetFileTime(newFile, &data_.ftCreationTime, nullptr, nullptr);
    std::vector<uint8_t> access = AccessOf(name_);
    // Mostly the new file has the same from its folder. Setting it all the same would cost time,
    // and file systems that only imitate the lists do not return what was set.
    if (!access.empty() && access != AccessOf(newName)) SetAccess(newName, access);
}

}  // namespace tessary::files
