// viewer_bench show FILE.jpg   from a name to the view, beside the bare decoder
// viewer_bench sight FILE.jpg  zooming, dragging and resizing the window
// viewer_bench frames FILE     how late the frames of an animation are, and what they cost
// viewer_bench film FILE [parts]   writes an animation for that
// viewer_bench scan FOLDER     scanning a folder of plug-ins, and the share of the registry in it
// viewer_bench leave FILE…     memory and handles that are left after showing 1000 pictures
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "app/settings/settings_store.h"
#include "bench/common/finished_program.h"
#include "bench/common/hosted_plugins.h"
#include "bench/common/stopwatch.h"
#include "bench/viewer/bare_jpeg.h"
#include "bench/viewer/film.h"
#include "bench/viewer/frames_bench.h"
#include "bench/viewer/sight_bench.h"
#include "picture/current_picture.h"
#include "picture/show/modShowPicture.h"
#include "picture/view/picture_kernel.h"
#include "picture/view/sight_pixels.h"

namespace tessary {
namespace {

using namespace bench;

constexpr int kRuns = 9;

// A view without a window: takes pictures as the main window does.
class QuietView final : public PictureView {
  public:
    SightRoom Room() const override {
        return {.whole = {1280, 1024}, .bars = {}, .workArea = {1280, 1024}};
    }
    void SetPicture(Picture picture, const Picture& prepared) override {
        const SIZE size = SizeInRoom({picture.Width(), picture.Height()}, ChosenFitRule(), Room());
        const SightPart all{size, {0, 0, size.cx, size.cy}};
        shown_ = SharpPart::Of(
            all, prepared ? prepared.Another() : ResizePicturePart(picture, size, all.part));
    }
    void ShowReason(const std::wstring&) override { ClearPicture(); }
    void ClearPicture() override { shown_ = nullptr; }
    void SetPanelText(int, const std::wstring&) override {}
    bool Breathe() override { return true; }

  private:
    std::shared_ptr<const SharpPart> shown_;
};

// Nobody looks at the members.
class QuietList : public MemberList {
  public:
    void SetMembers(std::span<const ListedMember>) override {}
};

int BenchShow(const std::wstring& path) {
    LoadPluginsOf(FinishedFolder());
    Values().fixSizeValue = kSizeMode800;
    QuietView view;
    QuietList members;
    std::vector<double> bare;
    std::vector<double> show;
    std::vector<double> display;
    for (int run = 0; run <= kRuns;
         ++run) {  // in turn, so that both see the same machine; the first run warms up
        const double bareTime = Timed([&] { DecodeBareJpeg(path); });
        FileKind kind = kFileUnknown;
        const double showTime = Timed([&] { kind = ShowFile(path, view, members).kind; });
        if (!IsPictureKind(kind)) {
            std::fprintf(stderr, "not shown\n");
            return 1;
        }
        const double displayTime = Timed([&] { DisplayCurrentPicture(view); });
        if (run == 0) continue;
        bare.push_back(bareTime);
        show.push_back(showTime);
        display.push_back(displayTime);
    }
    std::printf("bare libjpeg-turbo decode   %7.1f ms\n", Median(bare));
    std::printf("show at size mode 2         %7.1f ms   ratio %.2f\n", Median(show),
                Median(show) / Median(bare));
    std::printf("  of it resize and display  %7.1f ms\n", Median(display));
    std::printf("  of it the rest            %7.1f ms\n", Median(show) - Median(display));
    SetCurrentPicture({});
    return 0;
}

int BenchSightOf(const std::wstring& path) {
    LoadPluginsOf(FinishedFolder());
    QuietView view;
    QuietList members;
    if (!IsPictureKind(ShowFile(path, view, members).kind)) return 1;
    BenchSight(CurrentPicture().Another());
    SetCurrentPicture({});
    return 0;
}

int BenchScan(const std::wstring& folder) {
    std::vector<double> scans;
    std::vector<double> loads;
    std::vector<double> writes;
    int count = 0;
    for (int run = 0; run < kRuns; ++run) {
        scans.push_back(Timed([&] { LoadPluginsOf(folder); }));
        count = SusieCollection().Count();
        UnloadSPI();
        loads.push_back(Timed([&] {
            std::vector<UniqueModule> modules;
            for (const std::wstring& file : FilesInFolder(folder, L"*.spi")) {
                modules.emplace_back(LoadLibraryW(file.c_str()));
            }
        }));
        // The call log of one load, as often as a scan needs it: load, and where libraries are not
        // kept, free.
        writes.push_back(Timed([&] {
            for (int i = 0; i < count; ++i) {
                SaveSetting(L"SPI_CALLLOG", L"Function", L"LoadLibrary");
                SaveSetting(L"SPI_CALLLOG", L"SPI", L"plugin.spi");
                SaveSetting(L"SPI_CALLLOG", L"File", L"");
                DeleteSettingSection(L"SPI_CALLLOG");
            }
        }));
    }
    std::printf("scan of %d plug-ins          %7.1f ms\n", count, Median(scans));
    std::printf("  of it bare load and free  %7.1f ms\n", Median(loads));
    std::printf("  of it call-log writes     %7.1f ms (%.0f %%)\n", Median(writes),
                100 * Median(writes) / Median(scans));
    return 0;
}

// What the process holds. Counted by hand: Wine answers the system's own counters with constants.
struct Resources {
    size_t committedBytes;
    size_t handles;
    size_t gdiObjects;
};

size_t CommittedBytes() {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof(region)) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    }
    return bytes;
}

// How many places of a handle table are taken, told by the highest one given out when so many are
// asked for that every gap is filled. `indexOf` is a handle's place.
template <typename Handle>
size_t TakenPlaces(const std::function<Handle()>& make,
                   const std::function<size_t(Handle)>& indexOf,
                   const std::function<void(Handle)>& destroy) {
    constexpr size_t kProbes = 2000;
    size_t highest = 0;
    std::vector<Handle> probes;
    for (size_t i = 0; i < kProbes; ++i) {
        probes.push_back(make());
        highest = std::max(highest, indexOf(probes.back()));
    }
    for (const Handle probe : probes)
        destroy(probe);
    return highest - kProbes;
}

Resources CurrentResources() {
    return {CommittedBytes(),
            TakenPlaces<HANDLE>([] { return CreateEventW(nullptr, FALSE, FALSE, nullptr); },
                                [](HANDLE event) { return reinterpret_cast<size_t>(event) / 4; },
                                [](HANDLE event) { CloseHandle(event); }),
            TakenPlaces<HBITMAP>(
                [] { return CreateBitmap(1, 1, 1, 1, nullptr); },
                [](HBITMAP bitmap) { return reinterpret_cast<size_t>(bitmap) & 0xFFFF; },
                [](HBITMAP bitmap) { DeleteObject(bitmap); })};
}

int BenchLeave(const std::vector<std::wstring>& paths) {
    LoadPluginsOf(FinishedFolder());
    Values().fixSizeValue = kSizeMode640;
    QuietView view;
    QuietList members;
    const auto show = [&](int times) {
        for (int i = 0; i < times; ++i)
            ShowFile(paths[static_cast<size_t>(i) % paths.size()], view, members);
        SetCurrentPicture({});
        view.ClearPicture();
    };
    show(100);
    CurrentResources();  // the counting itself leaves tables behind
    const Resources before = CurrentResources();
    const double time = Timed([&] { show(1000); });
    const Resources after = CurrentResources();
    std::printf("1000 pictures               %7.1f ms\n", time);
    std::printf("committed memory            %zu -> %zu KiB\n", before.committedBytes / 1024,
                after.committedBytes / 1024);
    std::printf("handles                     %zu -> %zu\n", before.handles, after.handles);
    std::printf("GDI objects                 %zu -> %zu\n", before.gdiObjects, after.gdiObjects);
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int count, wchar_t** arguments) {
    using namespace tessary;
    if (count < 3) return 2;
    const std::wstring command = arguments[1];
    const std::vector<std::wstring> rest(arguments + 2, arguments + count);
    const std::wstring key = LR"(Software\Tessary_Viewer_Bench)";
    RedirectSettingsStore(key);
    LoadHelperLibraries();
    UsePluginsAsTheViewer();
    int result = 2;
    if (command == L"show") result = BenchShow(rest[0]);
    if (command == L"sight") result = BenchSightOf(rest[0]);
    if (command == L"film") result = WriteFilm(rest[0], rest.size() > 1) ? 0 : 1;
    if (command == L"frames") result = BenchFrames(rest[0]) ? 0 : 1;
    if (command == L"scan") result = BenchScan(rest[0]);
    if (command == L"leave") result = BenchLeave(rest);
    UnloadSPI();
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    return result;
}
