// thumbnails_bench make KEPT SIDE FOLDER  small pictures of the files in FOLDER, kept in KEPT (both
//                                         with a trailing backslash); once more: found there
// thumbnails_bench scroll COUNT           a page of a list of so many small pictures
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "app/base/paths.h"
#include "bench/common/finished_program.h"
#include "bench/common/hosted_plugins.h"
#include "bench/common/stopwatch.h"
#include "picture/ahead/ahead_rules.h"
#include "picture/ahead/thumbnails.h"
#include "ui/form/form.h"
#include "ui/form/message_loop.h"
#include "ui/form/virtual_list.h"

namespace tessary {
namespace {

using namespace bench;

int BenchMake(const std::wstring& folder, int side, const std::vector<std::wstring>& files) {
    LoadHelperLibraries();
    UsePluginsAsTheViewer();
    LoadPluginsOf(FinishedFolder());
    Thumbnails thumbs;
    thumbs.Begin(
        ReadingThreads(), [] { return OwnConnector(); }, folder);
    std::vector<ThumbEntry> entries;
    for (const std::wstring& file : files)
        entries.push_back({.entry = {.path = file}});
    const HANDLE news = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    thumbs.OnNews([news] { SetEvent(news); });
    size_t there = 0;
    const double time = Timed([&] {
        // As a list does that is scrolled through: a screenful at a time.
        constexpr size_t kScreen = 50;
        for (size_t first = 0; first < entries.size(); first += kScreen) {
            const auto begin = entries.begin() + static_cast<ptrdiff_t>(first);
            const auto end =
                begin + static_cast<ptrdiff_t>(std::min(kScreen, entries.size() - first));
            const std::vector<ThumbEntry> some(begin, end);
            thumbs.Want(some, side, true);
            for (const ThumbEntry& entry : some) {
                Thumb thumb = thumbs.Find(entry);
                for (; thumb.state == ThumbState::kComing; thumb = thumbs.Find(entry))
                    WaitForSingleObject(news, 100);
                if (thumb.state == ThumbState::kThere) ++there;
            }
        }
    });
    thumbs.OnNews({});
    CloseHandle(news);
    std::printf("%zu of %zu small pictures  %7.2f s   %.1f a second\n", there, files.size(),
                time / 1000, static_cast<double>(files.size()) * 1000 / time);
    return there == files.size() ? 0 : 1;
}

struct Squares final : ListContent {
    explicit Squares(int entries) : count(entries), rows(192 * 192 * 3, 0x80) {
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), 192, 192, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    }
    int Count() const override { return count; }
    std::wstring Text(int index) const override { return L"DSC_" + std::to_wstring(index); }
    std::wstring Tip(int index) const override { return Text(index); }
    int Cursor() const override { return 0; }
    EntryPicture PictureOf(int) const override {
        return {EntryPicture::State::kThere, &info, rows.data()};
    }

    int count;
    BITMAPINFO info{};
    std::vector<uint8_t> rows;
};

struct Window final : Form {
    Window() : Form({.className = L"TessaryBench", .caption = L"bench"}) {}
};

int BenchScroll(int count) {
    Squares content(count);
    Window window;
    VirtualList list;
    window.Load();
    SetWindowPos(window.Handle(), nullptr, 0, 0, 1200, 900, SWP_NOZORDER | SWP_SHOWWINDOW);
    list.Create(window.Handle(), content, true);
    list.SetBounds(0, 0, 1180, 860);
    list.SetLook(192, true);
    list.CursorMoved();
    DoEvents();
    std::vector<double> times;
    for (int step = 0; step < 200; ++step) {
        times.push_back(Timed([&] {
            SendMessageW(list.Handle(), WM_VSCROLL, SB_PAGEDOWN, 0);
            UpdateWindow(list.Handle());
        }));
        DoEvents();
    }
    std::ranges::sort(times);
    std::printf("a page of a list of %d     %7.2f ms   the slowest %.2f ms\n", count,
                times[times.size() / 2], times.back());
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int argc, wchar_t** argv) {
    const std::vector<std::wstring> arguments(argv + 1, argv + argc);
    if (arguments.size() == 4 && arguments[0] == L"make") {
        return tessary::BenchMake(arguments[1], std::stoi(arguments[2]),
                                  tessary::FilesInFolder(arguments[3]));
    }
    if (arguments.size() == 2 && arguments[0] == L"scroll") {
        return tessary::BenchScroll(std::stoi(arguments[1]));
    }
    return 1;
}
