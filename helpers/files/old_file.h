// The file at a name, before a new one takes its place.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::files {

// The full name of the file that opening `name` leads to through links of any kind; `name` itself
// where there is no file or the system cannot tell. Empty when `name` is a link that leads nowhere;
// GetLastError tells the reason then. `name` must be in the form of ExtendedFullName.
std::wstring NameBehindLinks(const std::wstring& name);

// What a new file takes over from the one that it replaces: access control list, creation time,
// and whether it is hidden, a system file, encrypted or left out of the index.
class OldFile {
  public:
    // `name` may be none's.
    explicit OldFile(const std::wstring& name);

    bool Exists() const { return exists_; }
    // False for folders and read-only files.
    bool IsReplaceable() const;
    // Those that the new file must be created with, for CreateFileW.
    DWORD Attributes() const;
    // Passes on the rest to a file that was just created as `newName`, as far as the system allows:
    // no picture is lost because its protection cannot be kept.
    void PassOn(HANDLE newFile, const std::wstring& newName) const;

  private:
    std::wstring name_;
    WIN32_FILE_ATTRIBUTE_DATA data_{};  // when exists_
    bool exists_;
};

}  // namespace tessary::files
