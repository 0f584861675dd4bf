// Saves a picture with the three savers and beside each with the bare library or plain writes, in
// turns, in one process.
//
//   save_bench time NAME PICTURE FOLDER    one line for each format: the medians of several runs,
//                                          their ratio, and the sizes of the files
//   save_bench peak NAME PICTURE FOLDER FORMAT    the memory that one saving takes at its peak, in
//                                          a process of its own; FORMAT is png, jpg or bmp
//
// PICTURE is a bitmap file of 8 or 24 bits; FOLDER takes the files, and ends with a separator.
#include <windows.h>

#include <psapi.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/common/stopwatch.h"
#include "bench/save/bare_writers.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/dcjpeg/dcjpeg.h"
#include "helpers/dcpng/dcpng.h"
#include "helpers/dib/bitmap_file.h"
#include "helpers/files/file_source.h"

namespace tessary::bench {
namespace {

constexpr int kRuns = 31;
constexpr int kRunsOfLarge = 5;       // where one takes seconds
constexpr size_t kLarge = 16u << 20;  // bytes of pixels

struct Picture {
    std::vector<uint8_t> info;
    std::vector<uint8_t> bits;
    dib::DibView View() const { return dib::DibView::Of(info, bits).value(); }
};

Picture Load(const std::wstring& path) {
    auto source = files::FileSource::Open(path).value();
    dib::BitmapFile file(source);
    if (file.Open() != dib::DibError::kNone) throw std::runtime_error("the picture is no bitmap");
    Picture picture{{file.Info().begin(), file.Info().end()},
                    std::vector<uint8_t>(file.BitsSize())};
    file.ReadBits(picture.bits, {});
    return picture;
}

// An entry of a library in the application folder, which stands beside that of this program.
template <typename Function>
Function Entry(const wchar_t* library, const char* name) {
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    const auto folder = std::filesystem::path(program).parent_path().parent_path() / "bin";
    const HMODULE module = LoadLibraryW((folder / library).c_str());
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool Save(const std::wstring& format, const Picture& picture, const std::wstring& path) {
    const void* info = picture.info.data();
    const void* bits = picture.bits.data();
    const wchar_t* name = path.c_str();
    if (format == L"png") {
        static const auto save =
            Entry<dcpng::SaveToPNGFileWFunction>(L"dcpng.dll", dcpng::kSaveToPNGFileWName);
        return save(info, bits, name, nullptr, 0) == 0;
    }
    if (format == L"jpg") {
        static const auto save =
            Entry<dcjpeg::SaveToJPEGFileWFunction>(L"dcjpeg.dll", dcjpeg::kSaveToJPEGFileWName);
        return save(info, bits, name, nullptr, 0) != 0;
    }
    static const auto save = Entry<convertdib::SaveToBITMAPFileWFunction>(
        L"convertdib.dll", convertdib::kSaveToBITMAPFileWName);
    return save(info, bits, name, nullptr, 0) != 0;
}

void SaveBare(const std::wstring& format, const Picture& picture, const std::wstring& path) {
    if (format == L"png") return WriteBarePng(picture.View(), path);
    if (format == L"jpg") return WriteBareJpeg(picture.View(), path);
    std::vector<uint8_t> head(dib::kFileHeaderSize + picture.info.size());
    PlainFile file(path);
    file.Write(head);
    file.Write(picture.bits);
}

int Time(const std::wstring& name, const Picture& picture, const std::wstring& folder) {
    for (const std::wstring format : {L"png", L"jpg", L"bmp"}) {
        const int runs = format == L"png" && picture.bits.size() > kLarge ? kRunsOfLarge : kRuns;
        const std::wstring ours = std::wstring(folder).append(L"ours.").append(format);
        const std::wstring bare = std::wstring(folder).append(L"bare.").append(format);
        std::vector<double> ourTimes;
        std::vector<double> bareTimes;
        for (int run = 0; run < runs; ++run) {
            bool saved = false;
            ourTimes.push_back(Timed([&] { saved = Save(format, picture, ours); }));
            if (!saved) throw std::runtime_error("not saved");
            bareTimes.push_back(Timed([&] { SaveBare(format, picture, bare); }));
        }
        const auto ourSize = static_cast<double>(std::filesystem::file_size(ours));
        const auto bareSize = static_cast<double>(std::filesystem::file_size(bare));
        std::printf(
            "%ls as %ls: %.1f ms, bare %.1f ms, time ratio %.2f; %.0f bytes, bare %.0f, "
            "%+.2f %%\n",
            name.c_str(), format.c_str(), Median(ourTimes), Median(bareTimes),
            Median(ourTimes) / Median(bareTimes), ourSize, bareSize,
            100 * (ourSize / bareSize - 1));
    }
    return 0;
}

PROCESS_MEMORY_COUNTERS Memory() {
    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory));
    return memory;
}

int Peak(const std::wstring& name, const Picture& picture, const std::wstring& folder,
         const std::wstring& format) {
    const SIZE_T before = Memory().WorkingSetSize;
    const std::wstring path = folder + L"peak." + format;
    if (!Save(format, picture, path)) throw std::runtime_error("not saved");
    const SIZE_T peak = Memory().PeakWorkingSetSize;
    std::printf("%ls as %ls: %.1f MB at the peak beside the picture; file %.1f MB\n", name.c_str(),
                format.c_str(), static_cast<double>(peak - before) / (1 << 20),
                static_cast<double>(std::filesystem::file_size(path)) / (1 << 20));
    return 0;
}

int Main(const std::vector<std::wstring>& arguments) {
    if (arguments.size() < 4) return 2;
    const Picture picture = Load(arguments[2]);
    if (arguments[0] == L"time") return Time(arguments[1], picture, arguments[3]);
    if (arguments.size() == 5) return Peak(arguments[1], picture, arguments[3], arguments[4]);
    return 2;
}

}  // namespace
}  // namespace tessary::bench

int wmain(int argc, wchar_t** argv) {
    try {
        return tessary::bench::Main({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "save_bench: %s\n", error.what());
        return 1;
    }
}
