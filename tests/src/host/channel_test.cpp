// What goes between a program and its hosts.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/base/worker_thread.h"
#include "host/host_messages.h"
#include "host/section.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

TEST(HostMessages, NothingButAWholeMessageIsOne) {
    HostReply reply;
    reply.conditionText = L"cut short";
    reply.patterns = {L"*.A", L"*.B"};
    reply.members.emplace().resize(2);
    reply.members->at(1).fileSize = 12345;
    reply.bytes = {7, 1u << 20};
    const std::vector<uint8_t> bytes = BytesOf(reply);
    const std::optional<HostReply> same = ReplyOf(bytes);
    ASSERT_TRUE(same && same->members && same->members->size() == 2);
    EXPECT_EQ(same->members->at(1).fileSize, 12345u);
    EXPECT_EQ(BytesOf(*same), bytes);
    for (size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(ReplyOf(std::span(bytes).first(size))) << size;
    // Counts and sizes that lie: nothing is made room for that is not there.
    for (size_t at = 0; at + 4 <= bytes.size(); ++at) {
        std::vector<uint8_t> lying = bytes;
        std::fill_n(lying.begin() + static_cast<ptrdiff_t>(at), 4, uint8_t{0xFF});
        const std::optional<HostReply> read = ReplyOf(lying);
        EXPECT_TRUE(!read || BytesOf(*read).size() == bytes.size()) << at;
    }
    HostRequest request{.operation = static_cast<HostOperation>(99)};
    EXPECT_FALSE(RequestOf(BytesOf(request)));
}

TEST(SectionTest, IsNoLargerThanItIs) {
    const std::optional<Section> section = Section::Make(10);
    ASSERT_TRUE(section);
    const auto opened = [&](HANDLE object, uint64_t size) {
        HANDLE handle = nullptr;
        DuplicateHandle(GetCurrentProcess(), object, GetCurrentProcess(), &handle, 0, FALSE,
                        DUPLICATE_SAME_ACCESS);
        return Section::Open(UniqueSection(handle), size, Section::Access::kRead).has_value();
    };
    EXPECT_TRUE(opened(section->Handle(), 10));
    EXPECT_FALSE(opened(section->Handle(), 1 << 20));
    EXPECT_FALSE(opened(section->Handle(), 0));
    const UniqueEvent event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_FALSE(opened(event.Get(), 10));
    // What lies in a file can go while it is read.
    const test::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"f", std::string(9000, 'x'));
    const UniqueFile file(
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const UniqueSection mapped(
        CreateFileMappingW(file.Get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    EXPECT_FALSE(opened(mapped.Get(), 4096));
}

}  // namespace
}  // namespace tessary
