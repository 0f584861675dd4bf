// A folder of a test's own, removed with all it holds at the end.
#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "app/base/handles.h"

namespace tessary::test {

// Removes a folder with all it holds; also below paths that are longer than the standard library
// takes.
inline void RemoveTree(const std::wstring& folder) {
    const auto extended = [](const std::wstring& path) { return LR"(\\?\)" + path; };
    WIN32_FIND_DATAW entry;
    {
        const UniqueFind find(FindFirstFileW(extended(folder + L"\\*").c_str(), &entry));
        for (bool more = static_cast<bool>(find); more; more = FindNextFileW(find.Get(), &entry)) {
            const std::wstring name = entry.cFileName;
            if (name == L"." || name == L"..") continue;
            const std::wstring path = folder + L'\\' + name;
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                RemoveTree(path);
            } else {
                SetFileAttributesW(extended(path).c_str(), FILE_ATTRIBUTE_NORMAL);
                DeleteFileW(extended(path).c_str());
            }
        }
    }
    RemoveDirectoryW(extended(folder).c_str());
}

class TemporaryFolder {
  public:
    TemporaryFolder() {
        static int number = 0;
        // The time too: process ids come again, and what a dead process left must not be met.
        path_ = std::filesystem::temp_directory_path() /
                (L"tessary-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                 std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++number));
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { RemoveTree(path_.wstring()); }

    // With a trailing backslash.
    std::wstring Path() const { return path_.wstring() + L'\\'; }

    // Writes a file below the folder, making the folders on its way; answers its full path.
    std::wstring Write(std::wstring_view name, std::string_view content = {}) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file.wstring();
    }

    // Makes a folder below whose path is longer than the system usually takes; with a trailing
    // backslash and without a prefix.
    std::wstring Deep() const {
        std::wstring deep = Path();
        for (int i = 0; i < 5; ++i) {
            deep += std::wstring(60, L'深') + L'\\';
            CreateDirectoryW((LR"(\\?\)" + deep).c_str(), nullptr);
        }
        return deep;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace tessary::test
