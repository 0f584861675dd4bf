// Watches the conversion engine for somebody at a console: the log goes to one stream, progress to
// another.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "convert/convert_monitor.h"
#include "convert_cli/console_stream.h"
#include "convert_cli/json_report.h"
#include "convert_cli/run_summary.h"

namespace tessary {

class ConsoleMonitor final : public ConvertMonitor {
  public:
    // The streams and the report must outlive it. Progress is shown, in one line that is written
    // over, only when `progress` is a console. With `isQuiet` neither progress nor log is, and of
    // the summary only the files that did not become what they should.
    ConsoleMonitor(std::vector<ConvertSource> files, ConsoleStream& log, ConsoleStream& progress,
                   JsonReport& report, bool isQuiet, std::function<bool()> isStopWanted)
        : files_(std::move(files)),
          log_(log),
          progress_(progress),
          jsonReport_(report),
          isQuiet_(isQuiet),
          isStopWanted_(std::move(isStopWanted)) {}

    std::vector<ConvertSource> ConvertFileList() override { return files_; }
    size_t LogLineCount() override { return 0; }
    void RemoveFirstLogLine() override {}
    void AddLogLine(const std::wstring& line) override;
    void Breathe() override {}
    bool SetProgressBar(int32_t totalPosition, int32_t totalMaximum, int32_t filePosition,
                        int32_t fileMaximum) override;
    void FileDone(const FileReport& report) override;

    const OutcomeCounts& Counts() const { return summary_.Counts(); }
    // Tells on the progress stream which files failed, were damaged, skipped or renamed, and how
    // many files came to what.
    void WriteSummary();

  private:
    void ShowProgress();
    void EraseProgress();

    std::vector<ConvertSource> files_;
    ConsoleStream& log_;
    ConsoleStream& progress_;
    JsonReport& jsonReport_;
    bool isQuiet_;
    std::function<bool()> isStopWanted_;
    RunSummary summary_;
    int32_t totalPosition_ = 0;
    int32_t totalMaximum_ = 0;
    int32_t filePercent_ = 0;
    std::wstring shown_;     // the progress line that stands on the console
    ULONGLONG shownAt_ = 0;  // when it was written, in ticks
};

}  // namespace tessary
