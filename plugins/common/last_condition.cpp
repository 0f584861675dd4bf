#include "plugins/common/last_condition.h"

#include <windows.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace tessary::spi {
namespace {

// Threads end without a word, so what was kept for those that asked least lately goes.
constexpr size_t kMostThreads = 64;

// Memory of the thread's own would outlive a plug-in that is freed.
class Conditions {
  public:
    void Keep(DWORD thread, codec::Remark remark) {
        const std::lock_guard lock(mutex_);
        std::erase_if(kept_, [thread](const auto& entry) { return entry.first == thread; });
        if (remark.condition == codec::Condition::kNone) return;
        if (kept_.size() == kMostThreads) kept_.erase(kept_.begin());
        kept_.emplace_back(thread, std::move(remark));
    }

    codec::Remark Of(DWORD thread) {
        const std::lock_guard lock(mutex_);
        const auto found =
            std::ranges::find(kept_, thread, [](const auto& entry) { return entry.first; });
        return found == kept_.end() ? codec::Remark{} : found->second;
    }

  private:
    std::mutex mutex_;
    std::vector<std::pair<DWORD, codec::Remark>> kept_;  // the latest one last
};

Conditions& TheConditions() {
    static Conditions conditions;
    return conditions;
}

}  // namespace

void KeepCondition(codec::Remark remark) noexcept {
    try {
        TheConditions().Keep(GetCurrentThreadId(), std::move(remark));
    } catch (...) {  // no memory: the call's result has to do
    }
}

int AnswerCondition(wchar_t* text, int length) noexcept {
    try {
        const codec::Remark remark = TheConditions().Of(GetCurrentThreadId());
        if (text != nullptr && length > 0) {
            const size_t count = remark.text.copy(text, static_cast<size_t>(length) - 1);
            text[count] = L'\0';
        }
        return static_cast<int>(remark.condition);
    } catch (...) {
        return static_cast<int>(codec::Condition::kNone);
    }
}

}  // namespace tessary::spi
