// Members of a bound archive: which are listed, and getting them out.
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "plugin/private_folder.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::ArchiveOf;
using test::Raised;

class ArchiveTest : public test::PluginTest {
  protected:
    ArchiveTest() { plugin_.SetDllName(Plugin(L"axtsa.spi")); }

    void Bind(const std::string& directives) {
        plugin_.SetFile(
            folder_.Write(std::to_wstring(++number_) + L".tsa",
                          ArchiveOf({{"dir/a.jpg", "first"}, {"b.jpg", "second"}}, directives)));
    }
    std::string Extracted(int32_t index, const SusieProgress& progress = {}) {
        const OwnedBlock block = plugin_.DecodeArchive(index, progress);
        const BlockLock lock(block.Get());
        return {static_cast<const char*>(lock.Address()), lock.Size()};
    }
    // What the plug-in answered to an extraction that is expected to fail.
    uint32_t Failure(const SusieProgress& progress = {}) {
        try {
            Extracted(2, progress);
            return 0;
        } catch (const DecodeError& error) {
            EXPECT_EQ(error.Description(), L"圧縮ファイルの展開に失敗しました");
            return error.Result();
        }
    }
    static bool PrivateFolderIsLeft() {
        WIN32_FIND_DATAW found;
        return static_cast<bool>(UniqueFind(FindFirstFileW(
            (TemporaryFolder() + L"tessary_" + std::to_wstring(GetCurrentProcessId()) + L"_*")
                .c_str(),
            &found)));
    }

    clsSusie plugin_;
    int number_ = 0;
};

TEST_F(ArchiveTest, MembersComeOutOfFilesAndBlocksInEveryWayOfAPlugin) {
    const std::string extra = "extra-byte\n";
    for (const std::string& way :
         {std::string(), std::string("position:offset\n"), extra,
          std::string("no-memory\nno-overwrite\n"), std::string("no-memory\nstore-below\n")}) {
        const std::string expected = way == extra ? "second\xA5" : "second";
        Bind(way);
        EXPECT_EQ(Extracted(2), expected) << way;
        const OwnedBlock archive = Block(ArchiveOf({{"a", "first"}, {"b", "second"}}, way));
        plugin_.SetMemoryHandle(archive.Get(), L"x.tsa");
        EXPECT_EQ(Extracted(2), expected) << way;
        EXPECT_FALSE(PrivateFolderIsLeft()) << way;
    }
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
        Bind(directives);
        EXPECT_EQ(Failure(), result) << directives;
        EXPECT_EQ(plugin_.FileNumber(), 2);
    }
    EXPECT_FALSE(PrivateFolderIsLeft());
    Bind({});
    EXPECT_EQ(Failure([](int, int) { return false; }), static_cast<uint32_t>(susie::kAborted));
    for (const int32_t outside : {0, 3}) {
        EXPECT_EQ(Raised([&] { Extracted(outside); }), kErrorInvalidMemberIndex);
    }
    // Nothing is no member. Of the last, which extracts to disk, it is not told that it cannot
    // extract to memory.
    for (const char* way : {"", "fixed\n", "no-memory\n"}) {
        plugin_.SetFile(folder_.Write(L"empty.tsa", ArchiveOf({{"a", ""}, {"b", ""}}, way)));
        EXPECT_EQ(Failure(), static_cast<uint32_t>(susie::kBrokenData)) << way;
        EXPECT_EQ(plugin_.ErrorString(), L"圧縮ファイルの展開に失敗しました") << way;
        Bind({});
    }
}

TEST_F(ArchiveTest, MembersWithoutASizeGoToTheDiskFirst) {
    const std::wstring path = plugin_.DllName();
    Bind("zero-fields\nno-disk\n");  // one that knows no disk has the last word
    EXPECT_EQ(Extracted(2), "second");
    for (const char* way : {"zero-fields\ntrusts-size\n", "zero-fields\nno-memory\n"}) {
        Bind(way);
        EXPECT_EQ(Extracted(2), "second") << way;
    }
    // Where the disk was seen to work, a failure there is the answer.
    Bind("zero-fields\nanswer-after:GetFile:8\n");
    const int before = Calls(path, "GetFile");
    EXPECT_EQ(Failure(), 8U);
    EXPECT_EQ(Calls(path, "GetFile"), before + 1);
}

TEST_F(ArchiveTest, WhatThePluginTellsOfItsArchiveIsHanded) {
    Bind("condition:1:torn\n");
    EXPECT_EQ(Extracted(2), "second");
    EXPECT_EQ(plugin_.Damage(), L"torn");
    Bind("condition:2:password\nanswer-after:GetFile:3\n");
    EXPECT_EQ(Failure(), static_cast<uint32_t>(susie::kBrokenData));
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionPasswordNeeded);
    EXPECT_EQ(plugin_.ErrorString(), L"password");
    EXPECT_NE(Raised([&] { Bind("condition:3:volume\nanswer-after:GetArchiveInfo:2\n"); }), 0U);
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionVolumeMissing);
    EXPECT_EQ(plugin_.ErrorString(), L"volume");
}

TEST_F(ArchiveTest, ListsEndAndAreBelievedAsPluginsMeanThem) {
    const auto before = FreeHandles();
    for (const char* kind : {"dirty-end\n", "no-end\ntail:300\n", "answer-after:GetArchiveInfo:2\n",
                             "answer-after:GetArchiveInfo:2\nfixed\nunterminated\n"}) {
        Bind(kind);
        EXPECT_EQ(plugin_.FileNumber(), 2) << kind;
        EXPECT_EQ(Extracted(2), "second") << kind;
    }
    const auto refused = [&](const std::string& directives, const char* name) {
        return Raised([&] {
            plugin_.SetFile(folder_.Write(L"no.tsa", ArchiveOf({{name, "x"}}, directives)));
        });
    };
    for (const char* fixed : {"", "fixed\n"}) {
        const std::string failed = std::string("answer-after:GetArchiveInfo:2\n") + fixed;
        EXPECT_EQ(refused(failed, "\x01.jpg"), kErrorNotSupported);
        EXPECT_EQ(refused(failed, ""), kErrorNotSupported);
    }
    Bind("answer-after:GetFile:6\n");
    EXPECT_EQ(Failure(), 6U);
    plugin_.SetDllName(Plugin(L"axtsa.spi", "crash:av:GetFile\n", L"2.spi"));
    Bind({});
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(Failure(), 255U);
    EXPECT_EQ(plugin_.ErrorCount({}), 1);
    EXPECT_EQ(FreeHandles(), before);
}

TEST_F(ArchiveTest, PluginsThatOnlyKnowTheDiskGetNoNameThatLeadsOutOfTheFolder) {
    plugin_.SetFile(
        folder_.Write(L"x.tsa", ArchiveOf({{"..\\..\\out.tessary", "x"}}, "no-memory\n")));
    EXPECT_EQ(Raised([&] { Extracted(1); }), kErrorDecodingFailed);
    EXPECT_FALSE(PathExists(TemporaryFolder() + L"out.tessary"));
}

TEST_F(ArchiveTest, FoldersAreNoFiles) {
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
