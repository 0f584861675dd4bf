// Answers message boxes in the user's place and remembers them.
#pragma once

#include <string>
#include <vector>

#include "app/base/message_box.h"

namespace tessary::test {

// Whether a text has that part.
inline bool Has(const std::wstring& text, const std::wstring& part) {
    return text.find(part) != std::wstring::npos;
}

class RecordedMessages {
  public:
    struct Message {
        std::wstring text;
        unsigned style;
        std::wstring title;
    };

    explicit RecordedMessages(int answer = 1) {
        SetMessageBoxResponder(
            [this, answer](const std::wstring& text, unsigned style, const std::wstring& title) {
                messages_.push_back({text, style, title});
                return answer;
            });
    }
    RecordedMessages(const RecordedMessages&) = delete;
    RecordedMessages& operator=(const RecordedMessages&) = delete;
    ~RecordedMessages() { SetMessageBoxResponder({}); }

    const std::vector<Message>& All() const { return messages_; }

    // The text of the only message; empty when there was none or more than one.
    std::wstring Only() const { return messages_.size() == 1 ? messages_[0].text : std::wstring(); }

  private:
    std::vector<Message> messages_;
};

}  // namespace tessary::test
