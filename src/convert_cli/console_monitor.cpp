#include "convert_cli/console_monitor.h"

#include <algorithm>

namespace tessary {
namespace {

// So often the eye follows, and so rarely the console costs no time.
constexpr ULONGLONG kMillisecondsBetween = 100;

}  // namespace

void ConsoleMonitor::AddLogLine(const std::wstring& line) {
    if (isQuiet_) return;
    // Both may be the same console.
    if (log_.IsConsole()) EraseProgress();
    log_.WriteLine(line);
}

bool ConsoleMonitor::SetProgressBar(int32_t totalPosition, int32_t totalMaximum,
                                    int32_t filePosition, int32_t fileMaximum) {
    if (totalMaximum >= 0) {
        totalPosition_ = totalPosition;
        totalMaximum_ = totalMaximum;
    }
    if (fileMaximum > 0) {
        const int64_t percent = int64_t{filePosition} * 100 / fileMaximum;
        filePercent_ = static_cast<int32_t>(std::clamp<int64_t>(percent, 0, 100));
    }
    if (!isQuiet_ && progress_.IsConsole() && GetTickCount64() - shownAt_ >= kMillisecondsBetween) {
        ShowProgress();
    }
    return !isStopWanted_();
}

void ConsoleMonitor::ShowProgress() {
    std::wstring line;
    if (totalMaximum_ > 0) {
        line +=
            L'[' + std::to_wstring(totalPosition_) + L'/' + std::to_wstring(totalMaximum_) + L"] ";
    }
    line += std::to_wstring(filePercent_) + L'%';
    EraseProgress();
    progress_.Write(line);
    shown_ = std::move(line);
    shownAt_ = GetTickCount64();
}

void ConsoleMonitor::EraseProgress() {
    if (shown_.empty()) return;
    progress_.Write(L'\r' + std::wstring(shown_.size(), L' ') + L'\r');
    shown_.clear();
}

void ConsoleMonitor::FileDone(const FileReport& report) {
    summary_.Add(report);
    jsonReport_.Add(report);
}

void ConsoleMonitor::WriteSummary() {
    EraseProgress();
    summary_.Write(progress_, isQuiet_);
}

}  // namespace tessary
