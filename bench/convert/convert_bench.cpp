// convert_bench cost FOLDER SAMPLE.jpg   1000 copies of a small JPEG to PNG: the engine beside bare
//                                        calls of the same plug-in and the same PNG writer
// convert_bench many FOLDER              time for each file in a run over 2000 and over 20,000
//                                        bitmaps that are read, logged to a file and found too
//                                        small: what the disk takes for saving is left out
#include <windows.h>

#include <cstdio>
#include <deque>
#include <fstream>
#include <string>
#include <vector>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "app/settings/settings_store.h"
#include "bench/common/finished_program.h"
#include "bench/common/stopwatch.h"
#include "convert/modConvertFiles.h"
#include "helpers/dcpng/dcpng.h"
#include "helpers/dib/bitmap_header.h"
#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"

namespace tessary {
namespace {

using namespace bench;

constexpr int kRounds = 3;

// Keeps a list as the converter dialog does, and counts.
class QuietMonitor : public ConvertMonitor {
  public:
    explicit QuietMonitor(std::vector<std::wstring> files) : files_(std::move(files)) {}
    std::vector<std::wstring> ConvertFileList() override { return files_; }
    size_t LogLineCount() override { return lines_.size(); }
    void RemoveFirstLogLine() override { lines_.pop_front(); }
    void AddLogLine(const std::wstring& line) override { lines_.push_back(line); }
    void Breathe() override {}
    bool SetProgressBar(int32_t, int32_t, int32_t, int32_t) override { return true; }
    void CountFile(FileOutcome outcome) override {
        if (outcome != FileOutcome::kFailed) ++done_;
    }
    size_t Done() const { return done_; }

  private:
    std::vector<std::wstring> files_;
    std::deque<std::wstring> lines_;
    size_t done_ = 0;
};

// Milliseconds of a run; negative when a file failed.
double EngineTime(const std::vector<std::wstring>& files, const std::wstring& target) {
    QuietMonitor monitor(files);
    const double time = Timed([&] { ConvertFiles(target, monitor); });
    return monitor.Done() == files.size() ? time : -1;
}

// Many files in one folder cost more the more there are, which would be measured too: so they are
// spread over some.
std::vector<std::wstring> Copies(const std::wstring& folder, const wchar_t* extension, int count,
                                 const std::string& content) {
    constexpr int kInOneFolder = 200;
    std::vector<std::wstring> files;
    CreateDirectoryW(folder.c_str(), nullptr);
    for (int i = 0; i < count; ++i) {
        const std::wstring subFolder = folder + std::to_wstring(i / kInOneFolder) + L'\\';
        if (i % kInOneFolder == 0) CreateDirectoryW(subFolder.c_str(), nullptr);
        files.push_back(subFolder + std::to_wstring(i) + extension);
        FILE* const file = _wfopen(files.back().c_str(), L"wb");
        std::fwrite(content.data(), 1, content.size(), file);
        std::fclose(file);
    }
    return files;
}

template <typename Function>
Function Entry(const std::wstring& library, const char* name) {
    const FARPROC entry = GetProcAddress(LoadLibraryW(library.c_str()), name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(entry));
}

int __stdcall IgnoreProgress(int, int, LONG_PTR) {
    return 0;
}

double BareTime(const std::vector<std::wstring>& files, const std::wstring& target) {
    const auto decode =
        Entry<susie::GetPictureFunction>(FinishedFolder() + L"iftjpeg.spi", "GetPicture");
    const auto save = Entry<dcpng::SaveToPNGFileWFunction>(FinishedFolder() + L"dcpng.dll",
                                                           dcpng::kSaveToPNGFileWName);
    CreateDirectoryW(target.c_str(), nullptr);
    int number = 0;
    return Timed([&] {
        for (const std::wstring& path : files) {
            PicturePair pair;
            if (decode(AnsiPathOf(path)->c_str(), 0, 0, &pair.info, &pair.bits, IgnoreProgress,
                       0) != susie::kSuccess) {
                continue;
            }
            const OwnedPicture picture(pair);
            const BlockLock info(pair.info);
            const BlockLock bits(pair.bits);
            const std::wstring name = target + std::to_wstring(number++) + L".png";
            save(info.Address(), bits.Address(), name.c_str(), &Values().pngSave,
                 reinterpret_cast<LONG_PTR>(&IgnoreProgress));
        }
    });
}

int BenchCost(const std::wstring& folder, const std::wstring& sample) {
    std::ifstream file(sample.c_str(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::vector<std::wstring> files = Copies(folder + LR"(in\)", L".jpg", 1000, content);
    LoadPluginsOf(FinishedFolder());
    Values().convert.saveType1 = Values().convert.saveType2 = 1;
    std::vector<double> bare;
    std::vector<double> engine;
    for (int round = 0; round < kRounds; ++round) {
        bare.push_back(BareTime(files, folder + LR"(bare\)"));
        engine.push_back(EngineTime(files, folder + LR"(engine\)"));
    }
    std::printf("1000 JPEGs to PNG, engine     %9.1f ms\n", Median(engine));
    std::printf("bare decode and save          %9.1f ms   ratio %.2f\n", Median(bare),
                Median(engine) / Median(bare));
    return 0;
}

int BenchMany(const std::wstring& folder) {
    const dib::BitmapFileHeader head{dib::kBitmapFileType, 58, 0, 0, 54};
    const dib::BitmapInfoHeader info{40, 1, 1, 1, 24, 0, 4, 0, 0, 0, 0};
    std::string bitmap(reinterpret_cast<const char*>(&head), sizeof(head));
    bitmap.append(reinterpret_cast<const char*>(&info), sizeof(info)).append(4, '\0');
    const std::vector<std::wstring> files = Copies(folder + LR"(in\)", L".bmp", 20000, bitmap);
    Values().convert.noDecodeSmall = 1;
    Values().convert.minDecodeSizeX = Values().convert.minDecodeSizeY = 1;
    Values().convert.outputErrorLog = 1;
    Values().convert.errorLogFileName = folder + L"log.txt";
    for (const size_t count : {size_t{2000}, size_t{20000}}) {
        const std::vector<std::wstring> some(files.begin(),
                                             files.begin() + static_cast<ptrdiff_t>(count));
        const double time = EngineTime(some, folder + L"out" + std::to_wstring(count) + L'\\');
        std::printf("run over %5zu small bitmaps   %9.3f ms for each\n", count,
                    time / static_cast<double>(count));
    }
    return 0;
}

}  // namespace
}  // namespace tessary

int wmain(int count, wchar_t** arguments) {
    using namespace tessary;
    if (count < 3) return 2;
    const std::wstring command = arguments[1];
    const std::wstring folder = AddBackslash(arguments[2]);
    const std::wstring key = LR"(Software\Tessary_Viewer_Bench)";
    RedirectSettingsStore(key);
    LoadHelperLibraries();
    for (const wchar_t* name : {L"dcpng.dll", L"dcjpeg.dll"})
        LoadLibraryW((FinishedFolder() + name).c_str());
    int result = 2;
    if (command == L"cost" && count > 3) result = BenchCost(folder, arguments[3]);
    if (command == L"many") result = BenchMany(folder);
    UnloadSPI();
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
    return result;
}
