// The entries of the three libraries, as the program calls them, and what they leave on the disk.
#include <windows.h>

#include <sddl.h>

#include <set>

#include "app/base/text.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/dcjpeg/dcjpeg.h"
#include "helpers/dcpng/dcpng.h"
#include "helpers/files/replacing_file.h"
#include "tests/helpers/savers/sample_pictures.h"
#include "tests/support/content_of.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"

namespace tessary::saving::test {
namespace {

using tessary::test::ChildProcess;
using tessary::test::ContentOf;
using tessary::test::LoadedLibrary;
using tessary::test::MakeFileLink;

constexpr wchar_t kTargetVariable[] = L"TESSARY_TEST_SAVES_TO";
constexpr wchar_t kRoundsVariable[] = L"TESSARY_KILL_ROUNDS";
constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
constexpr wchar_t kBeside[] = L"~tessary-1.tmp";
constexpr wchar_t kReadyEvent[] = L"TessaryTestSaves";

// Its access control list in a security descriptor.
Bytes AccessOf(const std::wstring& path) {
    Bytes descriptor(2000);
    DWORD size = 0;
    EXPECT_TRUE(GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(),
                                 static_cast<DWORD>(descriptor.size()), &size));
    descriptor.resize(size);
    return descriptor;
}

class SavingEntries : public testing::Test {
  protected:
    struct Library {
        const wchar_t* file;
        std::string entry;  // with a W behind it for names in UTF-16
        const char* bytesEntry;
        const char* start;  // of a file in this format
        bool reports;
        bool zeroIsSuccess;
    };
    static inline const Library kLibraries[] = {
        {L"convertdib.dll", convertdib::kSaveToBITMAPFileName, convertdib::kMakeBITMAPBytesName,
         "BM", false, false},
        {L"dcpng.dll", dcpng::kSaveToPNGFileName, dcpng::kMakePNGBytesName, "\x89PNG", true, true},
        {L"dcjpeg.dll", dcjpeg::kSaveToJPEGFileName, dcjpeg::kMakeJPEGBytesName, "\xFF\xD8\xFF",
         true, false}};

    // The error, 0 for none. `name` is text of either kind.
    template <typename Char>
    static DWORD Save(const Library& library, const SamplePicture& picture, const Char* name,
                      const void* options = nullptr) {
        using Silent = int(__stdcall*)(const void*, const void*, const Char*, const void*);
        using Reporting =
            int(__stdcall*)(const void*, const void*, const Char*, const void*, LONG_PTR);
        const std::string entry = library.entry + (sizeof(Char) == 1 ? "" : "W");
        const LoadedLibrary file(library.file);
        const void* info = picture.info.data();
        const void* bits = picture.bits.data();
        const int result = library.reports || sizeof(Char) > 1
                               ? Reporting{file[entry.c_str()]}(info, bits, name, options, 0)
                               : Silent{file[entry.c_str()]}(info, bits, name, options);
        const DWORD error = GetLastError();
        EXPECT_EQ(error == ERROR_SUCCESS, (result == 0) == library.zeroIsSuccess);
        return error;
    }

    // The file made in memory; the error instead where there is one. `limit`: as much as is taken.
    static std::string Made(const Library& library, const SamplePicture& picture,
                            const void* options = nullptr, size_t limit = SIZE_MAX) {
        using Make =
            int(__stdcall*)(const void*, const void*, const void*, BytesCallback, void*, LONG_PTR);
        struct Taken {
            static int __stdcall Take(const void* bytes, size_t size, void* to) {
                auto& into = *static_cast<Taken*>(to);
                into.bytes.append(static_cast<const char*>(bytes), size);
                return into.bytes.size() <= into.limit ? 1 : 0;
            }
            std::string bytes{};
            size_t limit;
        } taken{.bytes = {}, .limit = limit};
        const LoadedLibrary file(library.file);
        const int error = Make{file[library.bytesEntry]}(picture.info.data(), picture.bits.data(),
                                                         options, Taken::Take, &taken, 0);
        return error == 0 ? taken.bytes : std::to_string(error);
    }

    // Starts the program once more to save to a file again and again, and kills that process at
    // some time in the `within` milliseconds that follow.
    void KillWhileSaving(const std::wstring& target, DWORD within) {
        const HANDLE ready = CreateEventW(nullptr, FALSE, FALSE, kReadyEvent);
        const auto process =
            ChildProcess::OfThisProgram(L"*IsKilled", {.environment = {{kTargetVariable, target}}});
        EXPECT_EQ(WaitForSingleObject(ready, 30'000), DWORD{WAIT_OBJECT_0});
        Sleep(random_() % within);
        process.End(1);
        CloseHandle(ready);
    }

    std::wstring At(const wchar_t* name) const { return folder_.Path() + name; }
    // The names and contents of all files in the test's folder.
    std::map<std::wstring, std::string> Folder() const {
        std::map<std::wstring, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
            files[entry.path().filename().wstring()] =
                entry.is_directory() ? "folder" : ContentOf(entry.path());
        }
        return files;
    }

    tessary::test::TemporaryFolder folder_;
    std::minstd_rand random_{7};
    SamplePicture picture_{PixelFormat::kBgr24, 200, 150, {}};
};

TEST_F(SavingEntries, ReplaceFilesWithNamesOfEveryKind) {
    const std::wstring japanese = At(L"表示 ソ");
    const std::wstring deep = LR"(\\?\)" + folder_.Deep() + L"long";
    for (const Library& library : kLibraries) {
        folder_.Write(L"表示 ソ", std::string(1 << 20, 'x'));
        for (const std::wstring& path : {At(L"한글 \U0001F600"), japanese, deep.substr(4)})
            EXPECT_EQ(Save(library, picture_, path.c_str()), 0u);
        EXPECT_TRUE(CopyFileW(deep.c_str(), At(L"copy").c_str(), FALSE));
        const std::string saved = ContentOf(japanese);
        EXPECT_TRUE(saved.starts_with(library.start));
        folder_.Write(L"表示 ソ");
        EXPECT_EQ(Save(library, picture_, ToAnsi(japanese).c_str()), 0u);
        auto files = Folder();
        for (const wchar_t* name : {L"한글 \U0001F600", L"copy", L"表示 ソ"})
            EXPECT_TRUE(files[name] == saved);
        EXPECT_EQ(files.size(), 4u);
    }
}

TEST_F(SavingEntries, TakeTheOptions) {
    const auto saved = [&](size_t library, const int16_t* options) {
        EXPECT_EQ(Save(kLibraries[library], picture_, At(L"a").c_str(), options), 0u);
        return ContentOf(At(L"a"));
    };
    const int16_t defaults[][3] = {{0, 0}, {6, 0}, {60, 0, 0}};
    const int16_t changed[][3] = {{1, 0}, {6, 1}, {60, 1, 0}};
    for (size_t i = 0; i < std::size(kLibraries); ++i) {
        EXPECT_EQ(saved(i, nullptr), saved(i, defaults[i]));
        EXPECT_TRUE(Made(kLibraries[i], picture_, changed[i]) == saved(i, changed[i]));
        EXPECT_EQ(Made(kLibraries[i], picture_, nullptr, 99),
                  std::to_string(ERROR_NOT_ENOUGH_MEMORY));
    }
    EXPECT_EQ(saved(0, changed[0])[14], 12) << "OS/2";
    EXPECT_EQ(saved(1, changed[1])[28], 1) << "interlace";
    EXPECT_NE(saved(2, changed[2]).find("\xFF\xC2"), std::string::npos) << "progressive";
}

TEST_F(SavingEntries, FailWithoutTrace) {
    const std::wstring old = folder_.Write(L"old", "old content");
    const std::wstring readOnly = folder_.Write(L"read-only", "precious");
    SetFileAttributesW(readOnly.c_str(), FILE_ATTRIBUTE_READONLY);
    std::filesystem::create_directory(At(L"folder"));
    // Open as a program has a file that it shows.
    const UniqueFile user(CreateFileW(folder_.Write(L"busy", "in use").c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    const auto before = Folder();
    SamplePicture huge = picture_;
    huge.info[6] = huge.info[10] = 1;  // 65 thousand pixels more in both directions
    SamplePicture empty = picture_;
    empty.bits = Bytes();  // data() is null then
    SamplePicture endless(PixelFormat::kIndexed8, 3, 1, Colors(PixelFormat::kIndexed8));
    endless.info[16] = 1;  // run lengths of no size
    const struct {
        const SamplePicture& picture;
        std::wstring file;
        DWORD error;
    } cases[] = {
        {huge, old, ERROR_INVALID_DATA},
        {empty, old, ERROR_INVALID_DATA},
        {endless, old, ERROR_INVALID_DATA},
        {picture_, L"", ERROR_INVALID_NAME},
        {picture_, L"NUL", ERROR_INVALID_NAME},
        {picture_, folder_.Path(), ERROR_INVALID_NAME},
        {picture_, At(L"folder"), ERROR_ACCESS_DENIED},
        {picture_, At(L"none\\a"), ERROR_PATH_NOT_FOUND},
        {picture_, readOnly, ERROR_ACCESS_DENIED},
        {picture_, At(L"busy"), ERROR_SHARING_VIOLATION},
    };
    for (const Library& library : kLibraries) {
        for (const auto& c : cases)
            EXPECT_EQ(Save(library, c.picture, c.file.c_str()), c.error) << &c - cases;
        EXPECT_EQ(Made(library, empty), std::to_string(ERROR_INVALID_DATA));
        EXPECT_EQ(Save<char>(library, picture_, nullptr), DWORD{ERROR_INVALID_PARAMETER});
        EXPECT_EQ(Save<wchar_t>(library, picture_, nullptr), DWORD{ERROR_INVALID_PARAMETER});
    }
    EXPECT_TRUE(Folder() == before);
}

// The test starts itself once more, and kills that process somewhere within its saving, as a power
// cut would. TESSARY_KILL_ROUNDS tells how often; the savers take turns.
TEST_F(SavingEntries, LeaveAWholeFileWheneverTheProcessIsKilled) {
    const SamplePicture pictures[] = {{PixelFormat::kBgr24, 700, 500, {}, 1},
                                      {PixelFormat::kBgr24, 600, 700, {}, 2}};
    if (const wchar_t* target = _wgetenv(kTargetVariable)) {
        const Library& library = kLibraries[target[wcslen(target) - 1] - L'0'];
        SetEvent(OpenEventW(EVENT_MODIFY_STATE, FALSE, kReadyEvent));
        for (size_t i = 0;; ++i) {
            const std::wstring number = i % 2 == 0 ? L"" : L'-' + std::to_wstring(i);
            Save(library, pictures[i / 2 % 2], (target + number).c_str());
        }
    }
    const wchar_t* wanted = _wgetenv(kRoundsVariable);
    const int rounds = wanted != nullptr ? _wtoi(wanted) : 18;
    int replaced = 0;
    int created = 0;
    for (int round = 0; round < rounds; ++round) {
        const size_t number = static_cast<size_t>(round) % std::size(kLibraries);
        const std::wstring target = L"target" + std::to_wstring(number);
        std::set<std::string> whole{"old content"};
        const DWORD start = GetTickCount();
        for (const SamplePicture& picture : pictures) {
            ASSERT_EQ(Save(kLibraries[number], picture, At(target.c_str()).c_str()), 0u);
            whole.insert(ContentOf(At(target.c_str())));
        }
        // Some pictures' time, however busy the machine is.
        const DWORD within = std::max(60UL, GetTickCount() - start);
        KillWhileSaving(folder_.Write(target, "old content"), within);
        const auto files = Folder();
        EXPECT_TRUE(files.contains(target)) << round;
        for (const auto& [name, content] : files) {
            // In the moment of its moving the new file has a name of its own.
            EXPECT_TRUE(name == kBeside || whole.contains(content)) << round << content.size();
            if (content != "old content") ++(name == target ? replaced : created);
            DeleteFileW(At(name.c_str()).c_str());
        }
    }
    EXPECT_GT(replaced, 0);
    EXPECT_GT(created, 0);
}

// Not even an old one, which may be a user's own, or lead to one.
TEST_F(SavingEntries, LeaveOtherFilesOfTheirNamesAlone) {
    const std::wstring old = folder_.Write(L"precious", "a user's");
    EXPECT_TRUE(MakeFileLink(At(L"~tessary-1.tmp"), old));
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(old, now - std::chrono::hours(48));
    EXPECT_EQ(Save(kLibraries[0], picture_, folder_.Write(L"a", "replaced").c_str()), 0u);
    auto files = Folder();
    EXPECT_EQ(files[L"precious"], "a user's");
    EXPECT_EQ(files[L"~tessary-1.tmp"], "a user's");
    EXPECT_EQ(files.size(), 3u);
}

TEST_F(SavingEntries, KeepLinksAndTheProtectionBehindThem) {
    const std::wstring file = folder_.Write(L"file");
    const Bytes usual = AccessOf(file);
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:P(A;;FA;;;WD)", SDDL_REVISION_1, &descriptor, nullptr));
    EXPECT_TRUE(SetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, descriptor));
    LocalFree(descriptor);
    const Bytes open = AccessOf(file);
    EXPECT_NE(open, usual);
    EXPECT_TRUE(SetFileAttributesW(file.c_str(), kKept));
    EXPECT_TRUE(MakeFileLink(At(L"link"), file));

    EXPECT_EQ(Save(kLibraries[0], picture_, At(L"link").c_str()), 0u);
    EXPECT_EQ(AccessOf(file), open);
    EXPECT_EQ(GetFileAttributesW(file.c_str()) & kKept, kKept);
    auto files = Folder();
    EXPECT_TRUE(files[L"file"].starts_with("BM"));
    EXPECT_EQ(files[L"link"], files[L"file"]);
    EXPECT_EQ(files.size(), 2u);

    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Save(kLibraries[1], picture_, file.c_str()), 0u);
    EXPECT_EQ(AccessOf(file), open) << "by its own name and without attributes";
    files = Folder();

    files::ReplacingFile member(At(L"link"));
    ASSERT_TRUE(member.Write(Bytes(5, 'm')) && member.Commit());
    EXPECT_EQ(Folder()[L"link"], "mmmmm");
    EXPECT_EQ(Folder()[L"file"], files[L"file"]) << "outside of what was to be replaced";
}

}  // namespace
}  // namespace tessary::saving::test
