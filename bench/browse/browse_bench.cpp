// browse_bench fill           filling the file list with 32,002 names, beside a bare list box
// browse_bench forward FILE…  fast-forward over files, per picture, beside decoding and displaying
//                             the same files
// browse_bench neighbour FILE… a step to the next file after a second's rest, fit to the screen,
//                             beside the same without reading ahead
// browse_bench hold FILE…     stepping through files as fast as it goes, the same way
#include <windows.h>

#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

#include "app/settings/settings_store.h"
#include "bench/common/finished_program.h"
#include "bench/common/hosted_plugins.h"
#include "bench/common/stopwatch.h"
#include "picture/ahead/ahead_rules.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/show/modShowPicture.h"
#include "ui/control/frmControl.h"
#include "ui/form/activity.h"
#include "ui/form/message_loop.h"

namespace tessary {
namespace {

using namespace bench;

constexpr int kRuns = 7;

// The real windows.
struct Program {
    Program() {
        window.SetControlBar(bar);
        window.Load();
        bar.Load(window.Handle());
        window.Show();
    }
    ~Program() {
        CurrentActivity().readsUnderWay = 0;
        window.Unload();
        DoEvents();
    }

    frmMain window{{.commandLine = {},
                    .pluginCount = [] { return SusieCollection().Count(); },
                    .endProgram = {}}};
    frmControl bar{window};
};

int BenchFill() {
    std::vector<std::wstring> files;
    files.reserve(32002);
    for (int i = 0; i < 32002; ++i) {
        files.push_back(LR"(C:\写真\二〇二六年の旅行\DSC_)" + std::to_wstring(100000 + i) +
                        L".JPG");
    }
    Program program;
    std::vector<double> bare;
    std::vector<double> fill;
    for (int run = 0; run <= kRuns; ++run) {  // in turn; the first run warms up
        const HWND list = CreateWindowExW(0, L"LISTBOX", L"", WS_CHILD | WS_VISIBLE, 0, 0, 200, 100,
                                          program.window.Handle(), nullptr, nullptr, nullptr);
        const double bareTime = Timed([&] {
            SendMessageW(list, WM_SETREDRAW, FALSE, 0);
            for (const std::wstring& file : files) {
                SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(file.c_str()));
            }
            SendMessageW(list, WM_SETREDRAW, TRUE, 0);
        });
        DestroyWindow(list);
        program.bar.ClearLists();
        const double fillTime = Timed([&] { program.bar.SetFileList(files); });
        if (run == 0) continue;
        bare.push_back(bareTime);
        fill.push_back(fillTime);
    }
    std::printf("bare list box, 32002 names  %7.1f ms\n", Median(bare));
    std::printf("SetFileList                 %7.1f ms   ratio %.2f\n", Median(fill),
                Median(fill) / Median(bare));
    return 0;
}

int BenchForward(const std::vector<std::wstring>& files) {
    LoadPluginsOf(FinishedFolder());
    Program program;
    program.bar.SetFileList(files);
    std::vector<double> one;
    std::vector<double> forward;
    for (int run = 0; run <= 3; ++run) {
        const double oneTime = Timed([&] {
            for (const std::wstring& file : files) {
                ShowFile(file, program.window, program.bar);
                program.window.pictureView().Refresh();
            }
        });
        program.bar.SetFileList(files);
        const double forwardTime = Timed([&] {
            program.bar.Press(BarButton::kFastForward);
            while (program.bar.PlayMode() == BarButton::kFastForward) {
                MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
                DoEvents();
            }
        });
        if (program.bar.listFileName().Selected() != static_cast<int>(files.size()) - 1) return 1;
        if (run == 0) continue;
        one.push_back(oneTime / static_cast<double>(files.size()));
        forward.push_back(forwardTime / static_cast<double>(files.size() - 1));
    }
    std::printf("decode and display of one   %7.2f ms\n", Median(one));
    std::printf("fast-forward, per picture   %7.2f ms   ratio %.2f\n", Median(forward),
                Median(forward) / Median(one));
    return 0;
}

// For its own life pictures are read ahead.
struct ReadingAhead {
    ReadingAhead() {
        Ahead().Begin(ReadingThreads(), [] { return OwnConnector(); });
    }
    ~ReadingAhead() { Ahead().End(); }
};

void LookAtPicture(DWORD milliseconds) {
    const DWORD begin = GetTickCount();
    while (GetTickCount() - begin < milliseconds) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        DoEvents();
    }
}

// Milliseconds of each step from the first file to the last.
std::vector<double> Steps(const std::vector<std::wstring>& files, DWORD rest) {
    Program program;
    program.bar.SetFileList(files);
    std::vector<double> times;
    for (size_t i = 1; i < files.size(); ++i) {
        LookAtPicture(rest);
        times.push_back(Timed([&] {
            program.bar.Press(BarButton::kStepForward);
            program.window.pictureView().Refresh();
        }));
    }
    if (program.bar.listFileName().Selected() != static_cast<int>(files.size()) - 1) return {};
    return times;
}

int BenchSteps(const std::vector<std::wstring>& files, DWORD rest) {
    LoadPluginsOf(FinishedFolder());
    Values().fixSizeValue = kSizeModeScreen;
    std::vector<double> bare;
    std::vector<double> ahead;
    for (int run = 0; run < 3; ++run) {  // in turn
        for (const double time : Steps(files, rest))
            bare.push_back(time);
        const ReadingAhead reading;
        for (const double time : Steps(files, rest))
            ahead.push_back(time);
    }
    if (bare.empty() || ahead.empty()) return 1;
    const auto mean = [](const std::vector<double>& times) {
        return std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
    };
    std::printf("step, %4lu ms of rest        median %7.2f ms, mean %7.2f ms\n", rest, Median(bare),
                mean(bare));
    std::printf(
        "with reading ahead          median %7.2f ms, mean %7.2f ms   pictures per second "
        "%.2f times\n",
        Median(ahead), mean(ahead), mean(bare) / mean(ahead));
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int count, wchar_t** arguments) {
    using namespace tessary;
    if (count < 2) return 2;
    const std::wstring command = arguments[1];
    const std::wstring key = LR"(Software\Tessary_Viewer_Bench)";
    RedirectSettingsStore(key);
    LoadHelperLibraries();
    UsePluginsAsTheViewer();
    int result = 2;
    if (command == L"fill") result = BenchFill();
    if (command == L"forward") result = BenchForward({arguments + 2, arguments + count});
    if (command == L"neighbour") result = BenchSteps({arguments + 2, arguments + count}, 1000);
    if (command == L"hold") result = BenchSteps({arguments + 2, arguments + count}, 0);
    UnloadSPI();
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    return result;
}
