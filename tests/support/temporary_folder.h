// A folder of a test's own, removed with all it holds at the end.
#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tessary::test {

class TemporaryFolder {
  public:
    TemporaryFolder() {
        static int number = 0;
        path_ = std::filesystem::temp_directory_path() /
                (L"tessary-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                 std::to_wstring(++number));
        std::filesystem::remove_all(path_);  // process ids come again
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    // With a trailing backslash.
    std::wstring Path() const { return path_.wstring() + L'\\'; }

    // Writes a file below the folder, making the folders on its way; answers its full path.
    std::wstring Write(std::wstring_view name, std::string_view content = {}) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file.wstring();
    }

  private:
    std::filesystem::path path_;
};

}  // namespace tessary::test
