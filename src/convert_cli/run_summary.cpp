#include "convert_cli/run_summary.h"

namespace tessary {
namespace {

constexpr const wchar_t* kRemarks[] = {L"失敗", L"損傷", L"中止", L"スキップ", L"別名"};

size_t RemarkOf(const FileReport& report) {
    switch (report.outcome) {
        case FileOutcome::kFailed:
            return report.isDamaged ? 1 : 0;
        case FileOutcome::kStopped:
            return 2;
        case FileOutcome::kSkipped:
            return 3;
        default:
            return report.isDamaged ? 1 : 4;
    }
}

std::wstring LineOf(const FileReport& report) {
    std::wstring line = kRemarks[RemarkOf(report)] + (L": " + SourceText(report));
    if (report.isRenamed) line += L" → " + report.target;
    const std::wstring reason = report.text.empty() ? ReasonText(report.reason) : report.text;
    return reason.empty() ? line : line + L" （" + reason + L"）";
}

}  // namespace

void RunSummary::Add(const FileReport& report) {
    counts_.Count(report);
    if (IsRemarkable(report)) remarks_[RemarkOf(report)].push_back(LineOf(report));
}

void RunSummary::Write(ConsoleStream& stream, bool isQuiet) const {
    for (const std::vector<std::wstring>& lines : remarks_) {
        for (const std::wstring& line : lines)
            stream.WriteLine(line);
    }
    if (!isQuiet) stream.WriteLine(OutcomeText(counts_));
}

}  // namespace tessary
