// What a run has come to, for somebody at a console.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "convert/file_report.h"
#include "convert_cli/console_stream.h"

namespace tessary {

class RunSummary {
  public:
    void Add(const FileReport& report);
    // Tells which files failed, were damaged, skipped or renamed; unless `isQuiet` also how many
    // files came to what.
    void Write(ConsoleStream& stream, bool isQuiet) const;

    int Failures() const { return counts_.failed + counts_.damaged; }

  private:
    static constexpr size_t kRemarkKinds = 5;

    OutcomeCounts counts_;
    std::array<std::vector<std::wstring>, kRemarkKinds> remarks_;  // worst first
};

}  // namespace tessary
