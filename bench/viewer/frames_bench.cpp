#include "bench/viewer/frames_bench.h"

#include <windows.h>

#include <tlhelp32.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "app/settings/modValue.h"
#include "bench/common/hosted_plugins.h"
#include "picture/frames/frame_player.h"
#include "picture/frames/plugin_frames.h"
#include "picture/read/read_picture.h"
#include "ui/form/message_loop.h"
#include "ui/main/picture_stage.h"

namespace tessary::bench {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::chrono::seconds kTime{10};

double ProcessorTime(HANDLE process) {
    FILETIME born{};
    FILETIME died{};
    FILETIME kernel{};
    FILETIME user{};
    if (!GetProcessTimes(process, &born, &died, &kernel, &user)) return 0;
    const auto of = [](FILETIME time) {
        return static_cast<double>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) / 1e4;
    };
    return of(kernel) + of(user);
}

// Of this process and its children, in milliseconds.
double ProcessorTimeOfAll() {
    double sum = ProcessorTime(GetCurrentProcess());
    const UniqueFile all(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(all.Get(), &entry); more;
         more = Process32NextW(all.Get(), &entry)) {
        if (entry.th32ParentProcessID != GetCurrentProcessId()) continue;
        const HANDLE child = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, entry.th32ProcessID);
        if (child == nullptr) continue;
        sum += ProcessorTime(child);
        CloseHandle(child);
    }
    return sum;
}

void Play(const Animation& animation, const Picture& first, SIZE view) {
    const HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, view.cx,
                                        view.cy, nullptr, nullptr, nullptr, nullptr);
    PictureBox box;
    PictureStage stage(box);
    std::vector<double> late;
    uint32_t last = 0;
    uint32_t passed = 0;
    int unsharp = 0;
    FramePlayer player(PluginFrameReaders(OwnConnector), [&] { box.Nudge(); });
    PictureBox::Events events;
    events.paint = [&](HDC screen, const RECT& area) { return stage.Paint(screen, area); };
    events.nudged = [&] {
        std::optional<PlayedFrame> frame = player.Take();
        if (!frame) return;
        const SightPart wish = stage.SharpWish();
        const bool isMade = frame->sharp || IsRectEmpty(&wish.part) != FALSE;
        stage.ShowFrame(std::move(frame->pixels), std::move(frame->sharp));
        late.push_back(Milliseconds(Clock::now() - frame->due).count());
        const uint32_t next = last + 1 == animation.count ? 0 : last + 1;
        if (late.size() > 1 && frame->index != next) ++passed;
        if (!isMade) ++unsharp;
        last = frame->index;
    };
    box.Create(parent, std::move(events));
    box.SetBounds(0, 0, view.cx, view.cy);
    stage.SetRule({.sizeMode = kSizeModeWindow});
    stage.RoomChanged(view, false);
    stage.SetPicture(first.Another(), {});
    player.SetAnimation(animation);
    player.SetLook({.seen = stage.SharpWish()});
    player.Play();
    const auto begin = Clock::now();
    const double before = ProcessorTimeOfAll();
    while (Clock::now() - begin < kTime) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 100, QS_ALLINPUT);
        DoEvents();
    }
    const double share =
        (ProcessorTimeOfAll() - before) / Milliseconds(Clock::now() - begin).count();
    if (player.IsOver()) std::printf("ended by itself behind frame %u\n", last);
    player.End();
    stage.SetPicture({}, {});
    DestroyWindow(parent);
    std::ranges::sort(late);
    if (late.empty()) return;
    const auto at = [&](double share) {
        return late[static_cast<size_t>(share * static_cast<double>(late.size() - 1))];
    };
    std::printf(
        "%4ld x %4ld: %zu frames, late by %.1f ms (median), %.1f (of 100 one), %.1f (the latest); "
        "passed by %u, not sharp %d; %.2f of a processor\n",
        view.cx, view.cy, late.size(), at(0.5), at(0.99), late.back(), passed, unsharp, share);
}

}  // namespace

bool BenchFrames(const std::wstring& path) {
    LoadPluginsOf(FinishedFolder());
    const std::optional<FileStamp> stamp = ExactStampOf(path);
    const ReadResult read = ReadPicture(LookAtFile(path), {});
    if (!stamp || read.frames.kind != FrameKind::kAnimation) return false;
    const SIZE size{read.picture.Width(), read.picture.Height()};
    Animation animation;
    animation.entry.path = path;
    animation.stamp = *stamp;
    animation.plugin = read.plugin;
    animation.size = size;
    animation.count = read.frames.count;
    animation.plugins = std::make_shared<const KnownPlugins>(KnownOf(SusieCollection()));
    Play(animation, read.picture, size);
    Play(animation, read.picture, {size.cx * 2 / 3, size.cy * 2 / 3});
    return true;
}

}  // namespace tessary::bench
