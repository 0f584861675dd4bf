#include "ui/control/file_history.h"

#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr size_t kMostActs = 100;

}  // namespace

std::wstring NameOf(const FileAct& act) {
    const std::wstring files = act.steps.size() == 1
                                   ? L"「" + FileNameOf(act.steps.front().file.path) + L"」"
                                   : std::to_wstring(act.steps.size()) + L" 個のファイル";
    switch (act.kind) {
        case FileAct::Kind::kRename:
            return files + L"の名前の変更";
        case FileAct::Kind::kMove:
            return files + L"の移動";
        case FileAct::Kind::kCopy:
            return files + L"のコピー";
        default:
            return files + L"の削除";
    }
}

void FileHistory::Add(FileAct act) {
    if (act.steps.empty()) return;
    if (acts_.size() == kMostActs) acts_.erase(acts_.begin());
    acts_.push_back(std::move(act));
}

std::optional<FileAct> FileHistory::TakeLast() {
    if (acts_.empty()) return std::nullopt;
    FileAct last = std::move(acts_.back());
    acts_.pop_back();
    return last;
}

}  // namespace tessary
