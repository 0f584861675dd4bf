// What became of each file, for programs: one JSON object in a line.
#pragma once

#include <cstdint>
#include <string>

#include "app/base/handles.h"
#include "convert/file_report.h"

namespace tessary {

class JsonReport {
  public:
    // An empty path: no report is wanted. kStandardOutput: there, in ASCII, which is the same in
    // every code page. A file is in UTF-8.
    explicit JsonReport(const std::wstring& path);

    // False when the file could not be opened, or has not taken all that was written.
    bool IsGood() const { return error_ == 0; }
    // Why, as the system's error.
    uint32_t Error() const { return error_; }
    // Hands the line to the system at once.
    void Add(const FileReport& report);

  private:
    UniqueFile file_;
    bool isAscii_ = false;
    uint32_t error_ = 0;
};

// The line, without its end; in UTF-8, or with escapes for all that is not ASCII.
std::string JsonLine(const FileReport& report, bool isAscii);

}  // namespace tessary
