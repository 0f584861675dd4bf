// The file of a run whose turn it is: its entry in the work list, and what becomes of it.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>

#include "convert/file_report.h"
#include "convert/work_list.h"

namespace tessary {

class FileAtHand {
  public:
    // Its time begins now.
    FileAtHand(int32_t position, WorkEntry listed)
        : index(position),
          entry(std::move(listed)),
          report{.source = entry.source, .member = entry.member} {}

    // Milliseconds since its turn came.
    uint32_t Age() const { return static_cast<uint32_t>(GetTickCount64() - begunAt_); }

    // What has become of it, unless that is known already. Without a text the reason's own.
    void Report(FileOutcome outcome, FileReason reason = FileReason::kNone,
                std::wstring text = {}) {
        if (!std::exchange(isReported_, true)) Note(outcome, reason, std::move(text));
    }
    bool IsReported() const { return isReported_; }

    // The same, for the time being.
    void Note(FileOutcome outcome, FileReason reason, std::wstring text) {
        report.outcome = outcome;
        report.reason = reason;
        if (outcome != FileOutcome::kConverted) report.isRenamed = report.isReplaced = false;
        report.text = text.empty() ? ReasonText(reason) : std::move(text);
    }

    const int32_t index;    // in the work list
    const WorkEntry entry;  // a copy: the list grows meanwhile
    FileReport report;

  private:
    bool isReported_ = false;
    ULONGLONG begunAt_ = GetTickCount64();
};

}  // namespace tessary
