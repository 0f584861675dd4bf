#include "ui/convert/problem_list.h"

#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "ui/form/clipboard.h"
#include "ui/form/picture_box.h"
#include "ui/form/show_in_folder.h"

namespace tessary {
namespace {

std::wstring RemarkTextOf(const FileReport& report) {
    const std::optional<Remark> remark = RemarkOf(report);
    return remark ? RemarkText(*remark) : L"";
}

std::wstring ReasonInList(const FileReport& report) {
    std::wstring text = ReasonTextOf(report);
    if (report.isRenamed) text += L"（" + FileNameOf(report.target) + L" に保存）";
    return text;
}

ListView::Row RowOf(const FileReport& report) {
    const bool isMember = !report.member.empty();
    return {isMember ? report.member : FileNameOf(report.source), RemarkTextOf(report),
            ReasonInList(report),
            isMember ? report.source : RemoveBackslash(FolderOf(report.source))};
}

}  // namespace

void ProblemList::Attach(HWND dialog, int id) {
    constexpr ListView::Column kColumns[] = {
        {L"ファイル", 130}, {L"結果", 60}, {L"理由", 220, false, true}, {L"場所", 110}};
    list_.Attach(dialog, id);
    list_.SetColumns(kColumns);
    list_.OnDoubleClick([this] { ShowSelectedInFolder(); });
    list_.OnKeyDown([this](int keyCode, int shift) {
        if (shift != kCtrlMask) return false;
        if (keyCode == L'C') Copy();
        if (keyCode == L'A') list_.SelectAll();
        return keyCode == L'C' || keyCode == L'A';
    });
}

void ProblemList::Add(const FileReport& report) {
    if (!RemarkOf(report)) return;
    reports_.push_back(report);
}

void ProblemList::Clear() {
    reports_.clear();
    shown_ = 0;
    list_.SetRows({});
}

void ProblemList::Show() {
    if (shown_ == reports_.size()) return;
    std::vector<ListView::Row> rows;
    for (; shown_ < reports_.size(); ++shown_)
        rows.push_back(RowOf(reports_[shown_]));
    list_.AddRows(std::move(rows));
}

void ProblemList::ShowByKind() {
    std::ranges::stable_sort(reports_, {}, RemarkOf);
    shown_ = 0;
    list_.SetRows({});
    Show();
}

void ProblemList::SetVisible(bool visible) {
    list_.SetVisible(visible);
    list_.SetEnabled(visible);
}

bool ProblemList::ShowSelectedInFolder() const {
    const int index = list_.Selected();
    if (index < 0 || static_cast<size_t>(index) >= reports_.size()) return false;
    ShowInFolder(list_.Handle(), reports_[static_cast<size_t>(index)].source);
    return true;
}

void ProblemList::Copy() const {
    std::vector<int> selected = list_.AllSelected();
    if (selected.empty()) {
        for (size_t index = 0; index < reports_.size(); ++index)
            selected.push_back(static_cast<int>(index));
    }
    std::wstring text;
    for (const int index : selected) {
        const FileReport& report = reports_[static_cast<size_t>(index)];
        text.append(SourceText(report)).append(L"\t").append(RemarkTextOf(report));
        text.append(L"\t").append(ReasonInList(report)).append(L"\r\n");
    }
    CopyTextToClipboard(list_.Handle(), text);
}

}  // namespace tessary
