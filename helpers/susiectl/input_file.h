// Reading files by name, however long the name is.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tessary::susiectl {

// A text in the system's code page as UTF-16. Null is the empty text.
std::wstring FromAnsi(const char* text);

// The absolute form of `path`, which the system takes at any length. Empty when it is no path.
std::wstring FullPath(const std::wstring& path);

// A file open for reading, shared with everybody.
class InputFile {
  public:
    explicit InputFile(const std::wstring& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool IsOpen() const { return file_ != INVALID_HANDLE_VALUE; }

    // Fills `block` from `offset` on as far as the file goes; the number of bytes read.
    size_t Read(uint64_t offset, std::span<std::byte> block) const;

  private:
    HANDLE file_;
};

}  // namespace tessary::susiectl
