// Watches the conversion engine for somebody at a console: the log goes to one stream, progress to
// another.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "convert/convert_monitor.h"
#include "convert_cli/console_stream.h"

namespace tessary {

class ConsoleMonitor final : public ConvertMonitor {
  public:
    // The streams must outlive it. Progress is shown, in one line that is written over, only when
    // `progress` is a console.
    ConsoleMonitor(std::vector<ConvertSource> files, ConsoleStream& log, ConsoleStream& progress,
                   std::function<bool()> isStopWanted)
        : files_(std::move(files)),
          log_(log),
          progress_(progress),
          isStopWanted_(std::move(isStopWanted)) {}

    std::vector<ConvertSource> ConvertFileList() override { return files_; }
    size_t LogLineCount() override { return 0; }
    void RemoveFirstLogLine() override {}
    void AddLogLine(const std::wstring& line) override;
    void Breathe() override {}
    bool SetProgressBar(int32_t totalPosition, int32_t totalMaximum, int32_t filePosition,
                        int32_t fileMaximum) override;
    void FileDone(const FileReport& report) override { counts_.Count(report); }

    int Failures() const { return counts_.failed; }
    // Tells on the progress stream how many files came to what.
    void WriteSummary();

  private:
    void ShowProgress();
    void EraseProgress();

    std::vector<ConvertSource> files_;
    ConsoleStream& log_;
    ConsoleStream& progress_;
    std::function<bool()> isStopWanted_;
    OutcomeCounts counts_;
    int32_t totalPosition_ = 0;
    int32_t totalMaximum_ = 0;
    int32_t filePercent_ = 0;
    std::wstring shown_;     // the progress line that stands on the console
    ULONGLONG shownAt_ = 0;  // when it was written, in ticks
};

}  // namespace tessary
