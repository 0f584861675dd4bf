#include "convert_cli/run_summary.h"

namespace tessary {
namespace {

std::wstring LineOf(Remark remark, const FileReport& report) {
    std::wstring line = RemarkText(remark) + (L": " + SourceText(report));
    if (report.isRenamed) line += L" → " + report.target;
    const std::wstring reason = ReasonTextOf(report);
    return reason.empty() ? line : line + L" （" + reason + L"）";
}

}  // namespace

void RunSummary::Add(const FileReport& report) {
    counts_.Count(report);
    const std::optional<Remark> remark = RemarkOf(report);
    if (remark) remarks_[static_cast<size_t>(*remark)].push_back(LineOf(*remark, report));
}

void RunSummary::Write(ConsoleStream& stream, bool isQuiet) const {
    for (const std::vector<std::wstring>& lines : remarks_) {
        for (const std::wstring& line : lines)
            stream.WriteLine(line);
    }
    if (!isQuiet) stream.WriteLine(OutcomeText(counts_));
}

}  // namespace tessary
