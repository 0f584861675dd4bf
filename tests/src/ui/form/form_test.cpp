// A form's life, and the message loop that forms and timers live in.
#include "ui/form/form.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "ui/form/message_loop.h"
#include "ui/form/timer.h"

namespace tessary {
namespace {

using Events = std::vector<std::string>;

class RecordingForm final : public Form {
  public:
    RecordingForm() : Form({.className = L"TessaryRecordingForm", .caption = L"記録"}) {}
    ~RecordingForm() = default;

    Events events;
    bool refuse = false;
    bool fail = false;  // every handler throws

  private:
    void Record(const char* event) {
        events.push_back(event);
        if (fail) throw std::runtime_error(event);
    }
    void Form_Load() override { Record("load"); }
    void Form_QueryUnload(bool& cancel) override {
        cancel = refuse;
        Record("query");
    }
    void Form_Unload() override { Record(IsWindow(Handle()) ? "unload" : "unload too late"); }
    void Form_Terminate() override { Record(Handle() == nullptr ? "end" : "end too early"); }
    void Form_Command(int id) override { Record(id == 7 ? "command" : "?"); }
};

TEST(FormTest, LivesFromLoadToTerminateAndAgain) {
    RecordingForm form;
    for (int round = 0; round < 2; ++round) {
        form.events.clear();
        ASSERT_TRUE(form.Load());
        const HWND window = form.Handle();
        EXPECT_TRUE(form.Load());  // is loaded already
        form.refuse = true;
        form.Unload();
        EXPECT_TRUE(IsWindow(window));
        form.refuse = false;
        form.Unload();
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(form.events, (Events{"load", "query", "query", "unload", "end"}));
    }
}

TEST(FormTest, HandlersThatThrowHarmNobody) {
    RecordingForm form;
    form.fail = true;
    ASSERT_TRUE(form.Load());
    SendMessageW(form.Handle(), WM_COMMAND, 7, 0);
    form.Unload();  // the question failed, so nothing closes
    EXPECT_TRUE(IsWindow(form.Handle()));
    DestroyWindow(form.Handle());
    EXPECT_EQ(form.events, (Events{"load", "command", "query", "unload", "end"}));
}

TEST(MessageLoopTest, DoEventsLeavesQuittingToTheOuterLoop) {
    constexpr UINT kMessage = WM_APP + 77;
    int seen = 0;
    std::unique_ptr<MessageFilter> filter;
    filter = std::make_unique<MessageFilter>([&](MSG& message) {
        if (message.message != kMessage) return false;
        if (++seen == 2) filter.reset();
        return true;
    });
    const MessageFilter failing([](MSG&) -> bool { throw std::runtime_error("filter"); });
    for (int post = 0; post < 3; ++post)
        PostThreadMessageW(GetCurrentThreadId(), kMessage, 0, 0);
    EXPECT_TRUE(DoEvents());
    EXPECT_EQ(seen, 2);
    PostQuitMessage(42);
    EXPECT_FALSE(DoEvents());
    EXPECT_FALSE(DoEvents());
    EXPECT_EQ(RunMessageLoop(), 42);
    EXPECT_TRUE(DoEvents());
}

TEST(TimerTest, NeverNestsAndSurvivesItsOwnEndAndHandlersThatThrow) {
    int ticks = 0;
    bool inside = false;
    std::unique_ptr<Timer> timer;
    timer = std::make_unique<Timer>([&] {
        ASSERT_FALSE(inside);
        inside = true;
        Sleep(30);  // the next tick is due
        DoEvents();
        inside = false;
        if (++ticks == 3) timer.reset();
        throw std::runtime_error("tick");
    });
    ASSERT_TRUE(timer->Start(10));
    const DWORD start = GetTickCount();
    while (timer != nullptr && GetTickCount() - start < 10000) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        DoEvents();
    }
    EXPECT_EQ(ticks, 3);
}

}  // namespace
}  // namespace tessary
