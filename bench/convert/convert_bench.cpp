// convert_bench cost FOLDER SAMPLE.jpg   copies of a small JPEG to PNG: what the engine takes for a
//                                        file beside decoding and encoding, and where it goes
// convert_bench many FOLDER              time for each file in a run over 2000 and over 20,000
//                                        bitmaps, first read, logged and found too small, then
//                                        saved into one folder; and what the system takes there
//                                        in the end to make a file with nothing in it
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
#include "helpers/files/replacing_file.h"
#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"
#include "picture/read/source_file.h"
#include "plugin/call_log.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

using namespace bench;

constexpr int kRounds = 3;

// Keeps a list as the converter dialog does, and counts.
class QuietMonitor : public ConvertMonitor {
  public:
    explicit QuietMonitor(std::vector<std::wstring> files) : files_(std::move(files)) {}
    std::vector<ConvertSource> ConvertFileList() override { return {files_.begin(), files_.end()}; }
    size_t LogLineCount() override { return lines_.size(); }
    void RemoveFirstLogLine() override { lines_.pop_front(); }
    void AddLogLine(const std::wstring& line) override { lines_.push_back(line); }
    void Breathe() override {}
    bool SetProgressBar(int32_t, int32_t, int32_t, int32_t) override { return true; }
    void FileDone(const FileReport& report) override {
        if (report.outcome != FileOutcome::kFailed) ++done_;
    }
    size_t Done() const { return done_; }

  private:
    std::vector<std::wstring> files_;
    std::deque<std::wstring> lines_;
    size_t done_ = 0;
};

std::wstring SubFolder(std::wstring folder, const wchar_t* name, int number) {
    return folder.append(name).append(std::to_wstring(number)).append(L"\\");
}

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

// Decoding and saving without the engine, and the steps that the engine takes beside them; all for
// one file, in milliseconds.
struct Parts {
    double decoding, saving, place, kind, callLog;
};

Parts BareParts(const std::vector<std::wstring>& files, const std::wstring& target) {
    const auto decode =
        Entry<susie::GetPictureFunction>(FinishedFolder() + L"iftessjpeg.spi", "GetPicture");
    const auto save = Entry<dcpng::SaveToPNGFileWFunction>(FinishedFolder() + L"dcpng.dll",
                                                           dcpng::kSaveToPNGFileWName);
    CreateDirectoryW(target.c_str(), nullptr);
    Parts parts{};
    int number = 0;
    for (const std::wstring& path : files) {
        const std::wstring name = target + std::to_wstring(number++);
        PicturePair pair;
        parts.decoding += Timed([&] {
            decode(AnsiPathOf(path)->c_str(), 0, 0, &pair.info, &pair.bits, IgnoreProgress, 0);
        });
        const Picture picture = Picture::FromPair(pair);
        parts.saving += Timed([&] {
            save(picture.Info().data(), picture.Bits().data(), (name + L".png").c_str(),
                 &Values().saveOptions.png, reinterpret_cast<LONG_PTR>(&IgnoreProgress));
        });
        parts.place += Timed([&] { files::ReplacingFile(name + L".empty").Commit(); });
        parts.kind += Timed([&] { QueryFile(path); });
        parts.callLog += Timed([&] {
            WriteCallLog({L"GetPicture", L"iftessjpeg.spi", path});
            ClearCallLog();
        });
    }
    SusieCollection().UnloadFile();
    const auto count = static_cast<double>(files.size());
    return {parts.decoding / count, parts.saving / count, parts.place / count, parts.kind / count,
            parts.callLog / count};
}

int BenchCost(const std::wstring& folder, const std::wstring& sample) {
    std::ifstream file(sample.c_str(), std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const std::vector<std::wstring> files = Copies(folder + LR"(in\)", L".jpg", 200, content);
    LoadPluginsOf(FinishedFolder());
    Values().convert.saveType1 = Values().convert.saveType2 = 1;
    std::vector<double> engine, rest, decoding, encoding, place, kind, callLog;
    for (int round = 0; round < kRounds; ++round) {
        const Parts parts = BareParts(files, SubFolder(folder, L"bare", round));
        engine.push_back(EngineTime(files, SubFolder(folder, L"engine", round)) /
                         static_cast<double>(files.size()));
        decoding.push_back(parts.decoding);
        encoding.push_back(parts.saving - parts.place);
        place.push_back(parts.place);
        kind.push_back(parts.kind);
        callLog.push_back(parts.callLog);
        rest.push_back(engine.back() - decoding.back() - encoding.back());
    }
    const auto print = [](const char* what, const std::vector<double>& times) {
        std::printf("%-44s %8.2f ms\n", what, Median(times));
    };
    print("engine, for each of 200 small JPEGs", engine);
    print("decoding", decoding);
    print("encoding", encoding);
    print("everything else", rest);
    print("    finding out what a file is", kind);
    print("    the log of a plug-in call, of two", callLog);
    print("    creating the file and putting it in place", place);
    return 0;
}

// The time for each file, of a run over the first `count`.
double TimeForEach(const std::vector<std::wstring>& files, size_t count,
                   const std::wstring& target) {
    const std::vector<std::wstring> some(files.begin(),
                                         files.begin() + static_cast<ptrdiff_t>(count));
    return EngineTime(some, target) / static_cast<double>(count);
}

// The same for files without anything in them, added to a folder.
double EmptyFilesTime(const std::wstring& folder) {
    constexpr int kFiles = 100;
    return Timed([&] {
               for (int i = 0; i < kFiles; ++i)
                   files::ReplacingFile(folder + L"empty" + std::to_wstring(i)).Commit();
           }) /
           kFiles;
}

int BenchMany(const std::wstring& folder) {
    const dib::BitmapFileHeader head{dib::kBitmapFileType, 58, 0, 0, 54};
    const dib::BitmapInfoHeader info{40, 1, 1, 1, 24, 0, 4, 0, 0, 0, 0};
    std::string bitmap(reinterpret_cast<const char*>(&head), sizeof(head));
    bitmap.append(reinterpret_cast<const char*>(&info), sizeof(info)).append(4, '\0');
    const std::vector<std::wstring> files = Copies(folder + LR"(in\)", L".bmp", 20000, bitmap);
    Values().convert.saveType1 = Values().convert.saveType2 = 1;
    Values().convert.minDecodeSizeX = Values().convert.minDecodeSizeY = 1;
    Values().convert.outputErrorLog = 1;
    Values().convert.errorLogFileName = folder + L"log.txt";
    for (const size_t count : {size_t{2000}, size_t{20000}}) {
        const std::wstring none = SubFolder(folder, L"none", static_cast<int>(count));
        const std::wstring out = SubFolder(folder, L"out", static_cast<int>(count));
        Values().convert.noDecodeSmall = 1;
        const double read = TimeForEach(files, count, none);
        Values().convert.noDecodeSmall = 0;
        const double saved = TimeForEach(files, count, out);
        const double empty = EmptyFilesTime(out);
        std::printf(
            "run over %5zu small bitmaps, for each: read %6.3f ms, converted %6.3f ms\n"
            "    an empty file more in that folder %6.3f ms\n",
            count, read, saved, empty);
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
