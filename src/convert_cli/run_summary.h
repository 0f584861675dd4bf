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

    const OutcomeCounts& Counts() const { return counts_; }

  private:
    OutcomeCounts counts_;
    std::array<std::vector<std::wstring>, kRemarkCount> remarks_;
};

}  // namespace tessary
