// Text files that are open for writing, known by their numbers.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "app/base/handles.h"

namespace tessary {

// How a file is opened.
enum class OpenMode : int16_t {
    kAppend = 1,
    kInput = 2,   // must exist
    kOutput = 3,  // is created or emptied
    kRandom = 4,
    kBinary = 5,
};
enum class OpenAccess : int16_t { kRead = 1, kWrite = 2, kReadWrite = 3 };
// What others may not do meanwhile.
enum class OpenLock : int16_t { kShared = 1, kDenyRead = 2, kDenyWrite = 3, kDenyBoth = 4 };

// The files of one user of this; they are closed at the end of its life.
class NumberedFiles {
  public:
    // The number of the opened file, from 1; 0 when it cannot be opened so, and GetLastError tells
    // why. Selectors outside their enumerations are failures.
    int16_t OpenFileNumber(const std::wstring& path, OpenMode mode, OpenAccess access,
                           OpenLock lock);
    // Closes the file of that number; any other number does nothing.
    void CloseFileNumber(int16_t number);

    // Adds a line, to which CR and LF are added, where the file stands. It is with the system when
    // this returns. False when it could not be written whole; GetLastError tells why.
    bool WriteLine(int16_t number, std::string_view line);

  private:
    std::map<int16_t, UniqueFile> files_;
};

}  // namespace tessary
