// start_bench FOLDER COUNT EMPTY   how long the finished program takes from its start to its
// window, and until that answers, with a folder of so many plug-ins beside an empty one, in
// alternating runs
#include <windows.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "app/settings/settings_store.h"
#include "bench/common/stopwatch.h"
#include "tests/support/child_process.h"
#include "tests/support/finished_folder.h"

namespace tessary {
namespace {

using namespace bench;
using test::ChildProcess;

constexpr int kRuns = 9;
constexpr wchar_t kKey[] = LR"(Software\Tessary_Viewer_Bench)";

// Its main window, once that is visible; null: it has ended.
HWND WindowOf(const ChildProcess& viewer) {
    while (viewer.IsRunning()) {
        HWND window = nullptr;
        while ((window = FindWindowExW(nullptr, window, L"TessaryMainWindow", nullptr)) !=
               nullptr) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == viewer.Id() && IsWindowVisible(window)) return window;
        }
        Sleep(1);
    }
    return nullptr;
}

struct Start {
    double window = 0;  // milliseconds until it is there
    double answer = 0;  // until it has been painted and answers
};

// With the plug-ins of a folder; stays until it remembers so many.
Start MeasuredStart(const std::wstring& folder, size_t remembered) {
    SaveSetting(L"Init", L"Run", L"1");
    SaveSetting(L"General", L"UseSPI", L"1");
    SaveSetting(L"General", L"SPIFolder_1", folder);
    SaveSetting(L"General", L"LoadSPI_1", L"-1");
    Start start;
    std::optional<ChildProcess> viewer;
    HWND window = nullptr;
    start.window = Timed([&] {
        viewer.emplace(L'"' + test::FinishedFolder() + L"TessaryViewer.exe\"",
                       test::ChildStart{.environment = {{L"TESSARY_SETTINGS_KEY", kKey}}});
        window = WindowOf(*viewer);
    });
    start.answer = start.window + Timed([&] { SendMessageW(window, WM_NULL, 0, 0); });
    while (viewer->IsRunning() && SettingKeys(L"SPI_KNOWN").size() < remembered)
        Sleep(10);
    PostMessageW(window, WM_CLOSE, 0, 0);
    viewer->ExitCode();
    return start;
}

void Print(const char* what, const std::vector<Start>& starts) {
    std::vector<double> windows;
    std::vector<double> answers;
    for (const Start& start : starts) {
        windows.push_back(start.window);
        answers.push_back(start.answer);
    }
    std::printf("%-26s %7.1f ms, answers after %7.1f ms\n", what, Median(windows), Median(answers));
}

int Main(const std::wstring& folder, size_t count, const std::wstring& empty) {
    RedirectSettingsStore(kKey);
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    MeasuredStart(empty, 0);  // warms up
    const Start first = MeasuredStart(folder, count);
    std::vector<Start> with;
    std::vector<Start> without;
    for (int run = 0; run < kRuns; ++run) {
        without.push_back(MeasuredStart(empty, 0));
        with.push_back(MeasuredStart(folder, count));
    }
    Print("window without plug-ins", without);
    Print("with all of them known", with);
    Print("with none of them known", {first});
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int argc, wchar_t** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: start_bench FOLDER COUNT EMPTY\n");
        return 1;
    }
    return tessary::Main(argv[1], std::stoul(argv[2]), argv[3]);
}
