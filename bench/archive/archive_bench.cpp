// archive_bench COUNT FOLDER   lists a ZIP archive of COUNT members through the plug-in and with
// libarchive alone, and steps through the members. FOLDER is for the archive.
#include <windows.h>

#include <archive.h>
#include <archive_entry.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/base/modGetFolder.h"
#include "bench/common/stopwatch.h"
#include "helpers/susiectl/susie_interface.h"

namespace tessary::bench {
namespace {

constexpr int kRuns = 9;

// Ordinary names, and contents of a few hundred bytes.
void WriteZip(const std::wstring& path, int count) {
    archive* const writer = archive_write_new();
    archive_write_set_format_zip(writer);
    archive_write_open_filename_w(writer, path.c_str());
    archive_entry* const entry = archive_entry_new();
    std::string content;
    for (int i = 0; i < count; ++i) {
        content += std::to_string(i * 7919);
        content.resize(std::min<size_t>(content.size(), 400));
        const std::string name = "album/page" + std::to_string(100'000 + i) + ".jpg";
        archive_entry_clear(entry);
        archive_entry_copy_pathname(entry, name.c_str());
        archive_entry_set_filetype(entry, AE_IFREG);
        archive_entry_set_perm(entry, 0644);
        archive_entry_set_size(entry, static_cast<int64_t>(content.size()));
        archive_write_header(writer, entry);
        archive_write_data(writer, content.data(), content.size());
    }
    archive_entry_free(entry);
    archive_write_free(writer);
}

// What any program would do at least: open, and read every header.
int ListBare(const std::wstring& path) {
    archive* const reader = archive_read_new();
    archive_read_support_format_zip(reader);
    archive_read_open_filename_w(reader, path.c_str(), 64 * 1024);
    int count = 0;
    archive_entry* entry = nullptr;
    while (archive_read_next_header(reader, &entry) == ARCHIVE_OK)
        ++count;
    archive_read_free(reader);
    return count;
}

class Plugin {
  public:
    Plugin() : module_(LoadLibraryW((AppFolder() + LR"(..\bin\axtessarc.spi)").c_str())) {
        getArchiveInfo_ = reinterpret_cast<susie::GetArchiveInfoFunction>(
            reinterpret_cast<void*>(GetProcAddress(module_, "GetArchiveInfo")));
        getFile_ = reinterpret_cast<susie::GetFileFunction>(
            reinterpret_cast<void*>(GetProcAddress(module_, "GetFile")));
    }

    int List(const std::string& path) const {
        HLOCAL list = nullptr;
        if (getArchiveInfo_(path.c_str(), 0, susie::kSourceFile, &list) != susie::kSuccess)
            return -1;
        const auto count = static_cast<int>(LocalSize(list) / sizeof(susie::FileInfo)) - 1;
        LocalFree(list);
        return count;
    }

    bool Extract(const std::string& path, int position) const {
        HLOCAL block = nullptr;
        const int result = getFile_(path.c_str(), position, reinterpret_cast<char*>(&block),
                                    susie::kDestinationMemory, nullptr, 0);
        LocalFree(block);
        return result == susie::kSuccess;
    }

  private:
    HMODULE module_;
    susie::GetArchiveInfoFunction getArchiveInfo_;
    susie::GetFileFunction getFile_;
};

int Run(int count, const std::wstring& folder) {
    const std::wstring path = folder + L"\\many.zip";
    const std::wstring other = folder + L"\\one.zip";
    const std::string ansi(path.begin(), path.end());
    const std::string ansiOther(other.begin(), other.end());
    WriteZip(path, count);
    WriteZip(other, 1);
    const Plugin plugin;
    std::vector<double> bare;
    std::vector<double> ours;
    std::vector<double> again;
    // In turn, so that all see the same machine; the first run warms up.
    for (int run = 0; run <= kRuns; ++run) {
        int bareCount = 0;
        int ourCount = 0;
        const double bareTime = Timed([&] { bareCount = ListBare(path); });
        plugin.List(ansiOther);  // so that the plug-in does not remember
        const double ourTime = Timed([&] { ourCount = plugin.List(ansi); });
        const double againTime = Timed([&] { plugin.List(ansi); });
        if (bareCount != count || ourCount != count) {
            std::printf("listed %d and %d of %d members\n", bareCount, ourCount, count);
            return 1;
        }
        if (run == 0) continue;
        bare.push_back(bareTime);
        ours.push_back(ourTime);
        again.push_back(againTime);
    }
    int extracted = 0;
    const double steps = Timed([&] {
        for (int i = 0; i < count; ++i)
            extracted += plugin.Extract(ansi, i) ? 1 : 0;
    });
    std::printf("libarchive's bare listing of %d members %8.1f ms\n", count, Median(bare));
    std::printf("GetArchiveInfo                          %8.1f ms\n", Median(ours));
    std::printf("GetArchiveInfo / bare listing           %8.2f times\n",
                Median(ours) / Median(bare));
    std::printf("GetArchiveInfo again                    %8.1f ms\n", Median(again));
    std::printf("GetFile of %d members, one by one       %8.3f ms each\n", extracted,
                steps / count);
    return extracted == count ? 0 : 1;
}

}  // namespace
}  // namespace tessary::bench

int wmain(int argc, wchar_t** argv) {
    if (argc != 3) return 2;
    return tessary::bench::Run(_wtoi(argv[1]), argv[2]);
}
