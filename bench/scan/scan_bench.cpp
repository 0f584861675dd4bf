// scan_bench FOLDER   how long the collecting of a folder's files takes, beside a bare enumeration
// of it, in alternating runs
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "app/base/handles.h"
#include "bench/common/stopwatch.h"
#include "picture/read/arrangement.h"
#include "ui/control/folder_scan.h"

namespace tessary {
namespace {

using namespace bench;

constexpr int kRuns = 9;

size_t Enumerate(const std::wstring& folder) {
    size_t count = 0;
    WIN32_FIND_DATAW entry;
    const UniqueFind find(FindFirstFileW((folder + L"\\*").c_str(), &entry));
    if (!find) return 0;
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) ++count;
    } while (FindNextFileW(find.Get(), &entry));
    return count;
}

std::vector<FoundFile> Collect(const std::wstring& folder) {
    FolderScan scan({folder, false, L""});
    std::vector<FoundFile> files;
    while (!scan.HasEnded()) {
        scan.Wait(40);
        scan.Take(files);
    }
    scan.Take(files);
    return files;
}

// As the viewer lists a folder: natural order, what plug-ins name.
size_t List(const std::wstring& folder) {
    const KnownPlugin plugin{.path = {}, .traits = {.patterns = {L"*.PNG", L"*.JPG"}}, .stamp = {}};
    return Arranged(Collect(folder), {{}, NameKinds({&plugin, 1})}).size();
}

int Main(const std::wstring& folder) {
    std::vector<double> bare;
    std::vector<double> ours;
    std::vector<double> listed;
    size_t enumerated = 0;
    size_t collected = 0;
    for (int run = 0; run < kRuns; ++run) {
        bare.push_back(Timed([&] { enumerated = Enumerate(folder); }));
        ours.push_back(Timed([&] { collected = Collect(folder).size(); }));
        listed.push_back(Timed([&] { collected = std::min(collected, List(folder)); }));
    }
    if (enumerated == 0 || enumerated != collected) {
        std::fprintf(stderr, "%zu files enumerated, %zu collected\n", enumerated, collected);
        return 1;
    }
    std::printf("%zu files, bare enumeration %.0f ms\n", enumerated, Median(bare));
    std::printf("%zu files, collected %.0f ms\n", collected, Median(ours));
    std::printf("ratio %.2f\n", Median(ours) / Median(bare));
    std::printf("%zu files, listed in natural order %.0f ms\n", collected, Median(listed));
    std::printf("ratio %.2f\n", Median(listed) / Median(bare));
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int argc, wchar_t** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: scan_bench FOLDER\n");
        return 1;
    }
    return tessary::Main(argv[1]);
}
