// What was asked a moment ago.
#pragma once

#include <windows.h>

#include <map>
#include <mutex>
#include <string>

namespace tessary::files {

// Remembers the answers to questions about drives for two seconds: asking may take longer than it
// takes to save a small picture, and nobody changes a stick in that time. For any thread.
template <typename Answer>
class RecentAnswers {
  public:
    // The answer of `ask`, or what it has answered for that drive lately.
    template <typename Ask>
    Answer Get(const std::wstring& drive, Ask&& ask) {
        const std::lock_guard lock(mutex_);
        const ULONGLONG now = GetTickCount64();
        const auto known = answers_.find(drive);
        if (known != answers_.end() && now - known->second.time < kLasts)
            return known->second.answer;
        const Answer answer = ask();
        answers_[drive] = {answer, now};
        return answer;
    }

  private:
    struct Known {
        Answer answer{};
        ULONGLONG time = 0;
    };

    static constexpr ULONGLONG kLasts = 2000;  // milliseconds

    std::mutex mutex_;
    std::map<std::wstring, Known> answers_;
};

}  // namespace tessary::files
