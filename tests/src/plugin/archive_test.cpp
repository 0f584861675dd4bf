// Members of a bound archive: which are listed, and getting them out.
#include "app/base/modGetFolder.h"
#include "plugin/private_folder.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::ArchiveOf;
using test::Raised;

using ArchiveTest = test::BoundTest;

bool PrivateFolderIsLeft() {
    WIN32_FIND_DATAW found;
    const std::wstring name = L"tessary_" + std::to_wstring(GetCurrentProcessId()) + L"_*";
    return static_cast<bool>(
        UniqueFind(FindFirstFileW((TemporaryFolder() + name).c_str(), &found)));
}

TEST_F(ArchiveTest, MembersComeOutOfFilesAndBlocksInEveryWayOfAPlugin) {
    // Of unknown size: to the disk first, until one that knows none has the last word.
    for (const std::string way :
         {"zero-fields\nno-disk\n", "zero-fields\ntrusts-size\n", "zero-fields\nno-memory\n", "",
          "position:offset\n", "extra-byte\n", "no-memory\nno-overwrite\n",
          "no-memory\nstore-below\n"}) {
        const std::string expected = way == "extra-byte\n" ? "second\xA5" : "second";
        BindArchive(way);
        EXPECT_EQ(plugin_.FileNumber(), 2);
        EXPECT_EQ(Extracted(2), expected) << way;
        const OwnedBlock archive = Block(ArchiveOf({{"a", "first"}, {"b", "second"}}, way));
        plugin_.SetMemoryHandle(archive.Get(), L"x.tsa");
        EXPECT_EQ(Extracted(2), expected) << way;
        EXPECT_FALSE(PrivateFolderIsLeft()) << way;
    }
    // Where the disk was seen to work, a failure there is the answer.
    BindArchive("zero-fields\nanswer-after:GetFile:8\n");
    const int before = Calls(path_, "GetFile");
    EXPECT_EQ(ExtractFailure(), 8U);
    EXPECT_EQ(Calls(path_, "GetFile"), before + 1);
}

TEST_F(ArchiveTest, FailedExtractionsAreToldAndLeaveTheArchiveBound) {
    const std::pair<const char*, uint32_t> failures[] = {
        {"crash:av:GetFile\n", 255U},
        {"answer-after:GetFile:6\n", 6U},
        {"answer:GetFile:0\n", susie::kBrokenData},
        {"no-memory\nno-disk\n", 21U},
        {"no-memory\nanswer-after:GetFile:6\n", 6U},
    };
    for (const auto& [directives, result] : failures) {
        BindArchive(directives);
        EXPECT_EQ(ExtractFailure(), result) << directives;
        EXPECT_EQ(plugin_.FileNumber(), 2);
    }
    BindArchive({});
    EXPECT_EQ(ExtractFailure([](int, int) { return false; }), 1U);
    EXPECT_EQ(plugin_.Files(1), L"dir\\a");
    for (const int32_t outside : {0, 3}) {
        EXPECT_EQ(Raised([&] { Extracted(outside); }), kErrorInvalidMemberIndex);
        EXPECT_EQ(Raised([&] { plugin_.Files(outside); }), kErrorInvalidMemberIndex);
    }
    // Nothing is no member. Of the last, which extracts to disk, it is not told that it cannot
    // extract to memory.
    for (const char* way : {"", "fixed\n", "no-memory\n"}) {
        plugin_.SetFile(folder_.Write(L"empty.tsa", ArchiveOf({{"a", ""}, {"b", ""}}, way)));
        EXPECT_EQ(ExtractFailure(), static_cast<uint32_t>(susie::kBrokenData)) << way;
        EXPECT_EQ(plugin_.ErrorString(), L"圧縮ファイルの展開に失敗しました") << way;
        BindArchive({});
    }
    // The plug-in itself makes a file name of the member's.
    plugin_.SetFile(
        folder_.Write(L"x.tsa", ArchiveOf({{"..\\..\\out.tessary", "x"}}, "no-memory\n")));
    EXPECT_EQ(Raised([&] { Extracted(1); }), kErrorDecodingFailed);
    EXPECT_FALSE(PathExists(TemporaryFolder() + L"out.tessary") || PrivateFolderIsLeft());
}

TEST_F(ArchiveTest, ListsThatAreNoneOrEmpty) {
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    const std::wstring bad = ArchiveFile("answer:GetArchiveInfo:0\n");
    EXPECT_EQ(Raised([&] { plugin_.SetFile(bad); }), kErrorNotSupported);
    EXPECT_EQ(Raised([&] { plugin_.FileNumber(); }), kErrorNothingBound);
    // An empty list is believed only of what the plug-in says it supports.
    for (const bool supported : {true, false}) {
        plugin_.SetDllName(Plugin(L"axtsa.spi", supported ? "" : "answer:IsSupported:0\n",
                                  std::to_wstring(supported) + L".spi"));
        const uint32_t expected = supported ? 0 : kErrorNotSupported;
        const std::wstring file = folder_.Write(L"empty.tsa", "TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetFile(file); }), expected);
        const OwnedBlock block = Block("TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(block.Get(), L"x.tsa"); }), expected);
    }
}

TEST_F(ArchiveTest, FoldersAreNoFiles) {
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    plugin_.SetFile(folder_.Write(L"x.tsa", ArchiveOf({{"DIR/", ""},
                                                       {"dir/sub", ""},
                                                       {"dir/Sub/deep/a.jpg", "a"},
                                                       {"dir/empty", ""},
                                                       {"dir", "a file of that name"}})));
    std::wstring files;
    for (const ListedMember& file : plugin_.GetExpandFileList())
        files += std::to_wstring(file.position) + file.name + L' ';
    EXPECT_EQ(files, L"3dir\\Sub\\deep\\a.jpg 4dir\\empty 5dir ");
}

TEST(PrivateFolderTest, OnlyThoseOfEndedProcessesAreSweptAway) {
    // No process has an odd number.
    const std::wstring abandoned = TemporaryFolder() + L"tessary_4294967293_1";
    const std::wstring others[] = {TemporaryFolder() + L"tessary_4294967293",
                                   TemporaryFolder() + L"tessary_4294967293_x",
                                   TemporaryFolder() + L"tessary_4294967293_1_1"};
    CreateDirectoryW(abandoned.c_str(), nullptr);
    CreateDirectoryW((abandoned + L"\\x").c_str(), nullptr);
    CloseHandle(CreateFileW((abandoned + L"\\x\\a").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_READONLY, nullptr));
    for (const std::wstring& other : others)
        CreateDirectoryW(other.c_str(), nullptr);
    const PrivateFolder own;
    RemoveAbandonedFolders();
    EXPECT_FALSE(PathExists(abandoned));
    EXPECT_TRUE(IsFolder(own.Target()));
    for (const std::wstring& other : others)
        EXPECT_TRUE(RemoveDirectoryW(other.c_str())) << other;
}

}  // namespace
}  // namespace tessary
