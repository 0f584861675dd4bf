#include "plugin/private_folder.h"

#include <windows.h>

#include <cwchar>
#include <functional>
#include <mutex>
#include <string_view>

#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/write_error.h"
#include "plugin/plugin_error.h"

namespace tessary {
namespace {

constexpr int kMostTries = 100;

// Before the number of the process, `_` and a tick count.
constexpr std::wstring_view kNameStart = L"tessary_";

using EntryVisitor = std::function<bool(const std::wstring& path, DWORD attributes)>;

// Goes through the entries of a folder until the visitor answers false.
void VisitEntries(const std::wstring& folder, const EntryVisitor& visit) {
    const std::wstring start = folder + L'\\';
    WIN32_FIND_DATAW entry;
    const UniqueFind find(FindFirstFileW(ExtendedPath(start + L'*').c_str(), &entry));
    for (bool more = static_cast<bool>(find); more; more = FindNextFileW(find.Get(), &entry)) {
        const std::wstring name = entry.cFileName;
        if (name == L"." || name == L"..") continue;
        if (!visit(start + name, entry.dwFileAttributes)) return;
    }
}

// A link to a folder elsewhere is none of ours.
bool IsOwnFolder(DWORD attributes) {
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

void RemoveTree(const std::wstring& folder) {
    VisitEntries(folder, [](const std::wstring& path, DWORD attributes) {
        if (IsOwnFolder(attributes)) {
            RemoveTree(path);
        } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            RemoveDirectoryW(ExtendedPath(path).c_str());
        } else {
            SetFileAttributesW(ExtendedPath(path).c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW(ExtendedPath(path).c_str());
        }
        return true;
    });
    RemoveDirectoryW(ExtendedPath(folder).c_str());
}

std::wstring FirstFileBelow(const std::wstring& folder) {
    std::wstring file;
    VisitEntries(folder, [&](const std::wstring& path, DWORD attributes) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            file = path;
        } else if (IsOwnFolder(attributes)) {
            file = FirstFileBelow(path);
        }
        return file.empty();
    });
    return file;
}

bool IsRunning(DWORD processId) {
    const UniqueProcess process(OpenProcess(SYNCHRONIZE, FALSE, processId));
    if (!process) return GetLastError() != ERROR_INVALID_PARAMETER;
    return WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT;
}

// The process that has made a folder of that name; 0 when it is none of ours.
DWORD MakerOf(std::wstring_view name) {
    if (!name.starts_with(kNameStart)) return 0;
    name.remove_prefix(kNameStart.size());
    const size_t numberEnd = name.find(L'_');
    if (numberEnd == 0 || numberEnd > 10 || numberEnd + 1 >= name.size() ||
        name.find_first_not_of(L"0123456789_") != name.npos ||
        name.find(L'_', numberEnd + 1) != name.npos) {
        return 0;
    }
    return std::wcstoul(name.data(), nullptr, 10);
}

}  // namespace

void RemoveAbandonedFolders() {
    VisitEntries(RemoveBackslash(TemporaryFolder()),
                 [](const std::wstring& path, DWORD attributes) {
                     const DWORD maker = IsOwnFolder(attributes) ? MakerOf(FileNameOf(path)) : 0;
                     if (maker != 0 && !IsRunning(maker)) RemoveTree(path);
                     return true;
                 });
}

PrivateFolder::PrivateFolder() {
    static std::once_flag swept;
    std::call_once(swept, [] { Trapped(RemoveAbandonedFolders); });
    const std::wstring start = TemporaryFolder() + std::wstring(kNameStart) +
                               std::to_wstring(GetCurrentProcessId()) + L'_';
    DWORD error = ERROR_SUCCESS;
    // A process id comes again: what one that died has left is not to be met.
    for (int i = 0; i < kMostTries; ++i) {
        path_ = start + std::to_wstring(GetTickCount64() + static_cast<ULONGLONG>(i));
        if (!CreateDirectoryW(path_.c_str(), nullptr)) {
            error = LastWriteError(path_);
            continue;
        }
        if (CreateDirectoryW(Target().c_str(), nullptr)) return;
        error = LastWriteError(path_);
        RemoveDirectoryW(path_.c_str());
        break;
    }
    throw UnwrittenFileError(error, kNoTemporaryFolderText);
}

PrivateFolder::~PrivateFolder() {
    Trapped([&] { RemoveTree(path_); });
}

bool PrivateFolder::IsDiskFull() const {
    constexpr ULONGLONG kRest = 64 << 10;
    ULARGE_INTEGER free{};
    return GetDiskFreeSpaceExW(path_.c_str(), &free, nullptr, nullptr) && free.QuadPart < kRest;
}

std::wstring PrivateFolder::Target() const {
    return path_ + L"\\x";
}

std::wstring PrivateFolder::FirstFile() const {
    return FirstFileBelow(path_);
}

}  // namespace tessary
