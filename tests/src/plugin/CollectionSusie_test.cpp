// The collection of plug-ins: its order, and searches.
#include "plugin/CollectionSusie.h"

#include <functional>

#include "plugin/modSusie.h"
#include "plugin/susie_calls.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

class CollectionTest : public test::PluginTest {
  protected:
    void Add(const std::wstring& name, std::string_view script = {}, int failures = 0) {
        const std::wstring path = Plugin(L"iftst.spi", script, name);
        CheckFileDate(path);
        for (int i = 0; i < failures; ++i)
            IncrementErrorCount(path, L"GetPicture");
        if (script == "replaced") Touch(path);
        collection_.AddSPI(path);
    }
    int Asked(const std::wstring& name) { return Calls(folder_.Path() + name, "IsSupported"); }
    // The place of the member that a search finds for a new file, from 1.
    int32_t Found(const std::wstring& name, std::string_view content = "text", int32_t first = 1) {
        return collection_.FileSupported(folder_.Write(name, content), first);
    }
    CollectionSusie collection_;
};

TEST_F(CollectionTest, ReliablePluginsComeFirst) {
    Add(L"b.spi", "", 2);
    Add(L"a.spi", "", 3);
    Add(L"c.spi");
    Add(L"d.spi", "", 2);
    Add(L"e.spi", "replaced", 3);  // a new file has no past
    std::wstring order;
    for (const auto& member : collection_.NewEnum())
        order += FileNameOf(member->DllName()) + L' ';
    EXPECT_EQ(order, L"e.spi c.spi d.spi b.spi a.spi ");
}

TEST_F(CollectionTest, ScansAFolderOnceForEachFile) {
    const std::wstring plain = Plugin(L"iftst.spi");
    const std::wstring hidden = Plugin(L"minimal.spi");
    SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    folder_.Write(L"broken.SPI", "text");
    folder_.Write(L"other.spix", "text");
    folder_.Write(L"folder.spi\\x", "text");
    WriteCallLog({L"GetPicture", plain, L"x.tst"});
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 3);
    EXPECT_EQ(collection_.InterruptedCalls().at(0).plugin, plain);
    EXPECT_EQ(collection_.Compact(), 2);
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 3);
    EXPECT_EQ(collection_.Compact(), 2);
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path() + L"nowhere\\"), 2);
    EXPECT_EQ(collection_.Item(hidden)->DllName(), hidden);
    collection_.Remove(1);
    EXPECT_EQ(Raised([&] { collection_.Item(2); }), kErrorInvalidArgument);
    EXPECT_EQ(Raised([&] { collection_.Remove(0); }), kErrorInvalidArgument);
}

TEST_F(CollectionTest, MoreThanFiftyPluginsAreNotKeptLoaded) {
    for (const int count : {50, 51}) {
        while (static_cast<int>(CollectionSusie::PluginFiles(folder_.Path()).size()) < count)
            Plugin(L"minimal.spi", "", NewName(L".spi"));
        collection_.RemoveAll();
        EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), count);
        EXPECT_EQ(collection_.GetInMemorySPICount(), count == 50 ? 50 : 0);
    }
    EXPECT_EQ(Found(L"a.tst", "TST 1x1x24\n"), 1);
    EXPECT_EQ(collection_.GetInMemorySPICount(), 1);
    collection_.UnloadFile();
    EXPECT_EQ(collection_.GetInMemorySPICount(), 0);
}

TEST_F(CollectionTest, SearchGoesByNameThenContentThenEverybody) {
    Add(L"4.spi", "info:2:*.*\naccept-all\n");
    Add(L"3.spi", "info:2:*.abc\n");
    Add(L"2.spi", "info:2:*.jpg\naccept-all\n");
    Add(L"1.spi", "info:2:*.xyz\naccept-all\n");
    EXPECT_EQ(Found(L"a.xyz"), 1);
    EXPECT_EQ(Found(L"a.Abc", "TST 1x1x24\n"), 3) << "the hint says 1 to everything";
    EXPECT_EQ(collection_.Item(3).GetFile(), folder_.Path() + L"a.Abc");
    EXPECT_EQ(Found(L"a.dat"), 4);
    EXPECT_EQ(Found(L"b.abc", "TST 1x1x24\n"), 3) << "the hint claims every name";
    EXPECT_EQ(Found(L"b.dat", "\xFF\xD8\xFF\xE0"), 2) << "by its content";
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(Found(std::to_wstring(i) + L".jpg"), 2);
    EXPECT_EQ(Asked(L"2.spi"), 10) << "files of one kind cost one question each";
    collection_.Remove(4);
    EXPECT_EQ(Found(L"c.jpg"), 2);
    EXPECT_EQ(Found(L"c.dat", "TST 1x1x24\n"), 2) << "the one that accepted last";
    EXPECT_EQ(Asked(L"1.spi"), 1);
    Search search = collection_.SearchFor(folder_.Write(L"c.abc", "text"));
    EXPECT_EQ(search.Next(), &collection_.Item(2)) << "the name misleads";
    search.NoteFailure();
    EXPECT_EQ(Found(L"d.abc"), 1);
    EXPECT_EQ(Found(L"d.dat", "TST 1x1x24\n", 3), 3) << "the hint is below the start";
    EXPECT_EQ(Found(L"d.dat", "TST 1x1x24\n", 4), 0);
    EXPECT_EQ(collection_.FileSupported(folder_.Path() + L"gone.jpg"), 0);
}

TEST_F(CollectionTest, ACrashInASearchIsToldOfItsFile) {
    const auto expectTold = [&](const std::wstring& plugin) {
        Search nobody = collection_.SearchFor(folder_.Write(L"nobody.tst", "text"));
        EXPECT_EQ(nobody.Next(), nullptr);
        ASSERT_TRUE(nobody.LastRefusal());
        EXPECT_TRUE(nobody.LastRefusal()->hasCrashed);
        EXPECT_EQ(nobody.LastRefusal()->dllName, folder_.Path() + plugin);
    };
    Add(L"good.spi");
    Add(L"bad.spi", "crash:av:IsSupported\n");
    EXPECT_EQ(Found(L"a.dat", "TST 1x1x24\n"), 2) << "everybody is asked, in turn";
    EXPECT_EQ(Asked(L"bad.spi"), 1);
    expectTold(L"bad.spi");
    EXPECT_EQ(Asked(L"bad.spi"), 2) << "claimed it by name, and is not asked a second time";
    collection_.SetDynamicLoad(true);  // it is loaded anew
    collection_.RemoveAll();
    Add(L"worse.spi");
    folder_.Write(L"worse.spi.script", "crash:av:DllMain\n");
    expectTold(L"worse.spi");
}

TEST_F(CollectionTest, NothingChangesWhileAPluginIsAtWork) {
    Add(L"a.spi");
    const std::wstring file = folder_.Write(L"a.tst", "TST 2x3x24\n");
    const OwnedBlock block = Block("TST 1x1x24\n");
    ASSERT_EQ(collection_.FileSupported(file), 1);
    clsSusie& plugin = collection_.Item(1);
    clsSusie& other = plugin_;
    other.SetDllName(Plugin(L"minimal.spi"));
    // As the user may do it in a message box that a plug-in shows.
    const auto useTheProgram = [&](int, int) {
        EXPECT_TRUE(PluginCallUnderWay());
        EXPECT_EQ(collection_.FileSupported(file), 0);
        EXPECT_EQ(collection_.MemorySupported(block.Get(), L"a.tst"), 0);
        EXPECT_FALSE(LoadSPI());
        const std::function<void()> refused[] = {
            [&] { plugin.SetDllName(other.DllName()); },
            [&] { plugin.SetFile({}); },
            [&] { plugin.SetMemoryHandle(nullptr, {}); },
            [&] { other.SetFile(file); },
            [&] { other.SetMemoryHandle(block.Get(), L"a.tst"); },
            [&] { other.CheckFile(file); },
            [&] { other.CheckMemory(block.Get(), L"a.tst"); },
            [&] { other.ShowConfigurationDialog(nullptr); },
            [&] { plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture_); },
        };
        for (const auto& member : refused)
            EXPECT_EQ(Raised(member), kErrorCallUnderWay) << &member - refused;
        other.UnloadDLL();
        EXPECT_TRUE(IsLoaded(other.DllName()));
        collection_.UnloadFile();
        collection_.AddSPI(other.DllName());
        collection_.FScanAllSPI(folder_.Path());
        EXPECT_EQ(collection_.Compact(), 1);
        collection_.Remove(1);
        collection_.RemoveAll();
        EXPECT_EQ(collection_.Count(), 1);
        return CallIsLogged();
    };
    plugin.DecodePicture(DecodeTarget::kMemory, 0, useTheProgram, {}, &picture_);
    EXPECT_TRUE(picture_);
    EXPECT_EQ(plugin.GetFile(), file);
    EXPECT_FALSE(PluginCallUnderWay());
}

TEST_F(CollectionTest, AnUnreadableStoreEntryDisablesNoPlugin) {
    const std::wstring path = Plugin(L"iftst.spi");
    const DWORD noText = 1;
    const std::pair<const wchar_t*, const wchar_t*> spoilt[] = {
        {L"\\SPI_DATETIME", path.c_str()}, {L"\\SPI_RUNS", L"1"}, {L"\\SPI_CALLLOG", L"SPI"}};
    for (const auto& [section, key] : spoilt)
        RegSetKeyValueW(HKEY_CURRENT_USER, (store_.KeyPath() + section).c_str(), key, REG_DWORD,
                        &noText, sizeof(noText));
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 1);
    EXPECT_EQ(collection_.Item(1).DllName(), path);

    // Loading this one once ended the program, but now it is merely refused.
    const std::wstring broken = folder_.Write(L"broken.spi", "text");
    CheckFileDate(broken);
    NoteFatalLoad(broken);
    collection_.AddSPI(broken);
    EXPECT_EQ(GetSetting(L"SPI_FATALLOADS", broken), L"0");
}

TEST_F(CollectionTest, ByExtensionOnlyThoseThatClaimTheFileAreAsked) {
    collection_.SetTryAll(false);
    Add(L"any.spi", "accept-all\ninfo:2:*.xyz\n");
    Add(L"jpeg.spi", "accept-all\ninfo:2:*.jpg\n");
    EXPECT_EQ(Found(L"a.xyz"), 2);
    EXPECT_EQ(Found(L"a.txt"), 0) << "not even the one that accepted last";
    EXPECT_EQ(Asked(L"any.spi"), 1);
    EXPECT_EQ(Asked(L"jpeg.spi"), 0);
    EXPECT_EQ(Found(L"a.dat", "\xFF\xD8\xFF\xE0"), 1) << "by its content";
    EXPECT_TRUE(collection_.Item(1).CheckMode());
    const OwnedBlock block = Block("\xFF\xD8\xFF\xE0");
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.dat"), 0);
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.jpg"), 1);
    EXPECT_EQ(collection_.Item(1).GetMemoryHandle(), block.Get());
}

TEST_F(CollectionTest, ABlockOutOfAnArchiveDoesNotUnbindIt) {
    Add(L"b.spi");
    Add(L"a.spi");
    const std::wstring archivePlugin = Plugin(L"axtsa.spi");
    collection_.AddSPI(archivePlugin);
    const std::wstring file = folder_.Write(L"a.tsa", test::ArchiveOf({{"b.tsa", "TSA\n\n"}}));
    ASSERT_EQ(collection_.FileSupported(file), 1);
    clsSusie& archive = collection_.Item(1);
    const OwnedBlock inner = archive.DecodeArchive(1, {});
    EXPECT_EQ(collection_.MemorySupported(inner.Get(), L"b.tsa"), 1);
    EXPECT_EQ(collection_.ArchivePlugin(file), &archive);
    EXPECT_EQ(Calls(archivePlugin, "GetArchiveInfo"), 1);

    const OwnedBlock picture = Block("TST 1x1x24\n");
    Search search = collection_.SearchFor(picture.Get(), L"a.tst");
    for (clsSusie* const found : {&collection_.Item(2), &collection_.Item(3), {}})
        EXPECT_EQ(search.Next(), found);
    collection_.UnloadMemory();
    EXPECT_FALSE(collection_.Item(2).IsBound() || collection_.Item(3).IsBound());
    EXPECT_EQ(archive.GetFile(), file);

    collection_.UnloadFile();
    EXPECT_FALSE(archive.IsBound());
    EXPECT_EQ(collection_.ArchivePlugin(file), &archive);  // bound again
    EXPECT_EQ(collection_.ArchivePlugin(folder_.Write(L"a.tst", "TST 1x1x24\n")), nullptr);
}

TEST_F(CollectionTest, TheOpenDialogGetsPairs) {
    Add(L"b.spi", "info:1:A|B\ninfo:2:*.bmp;*.jpg;*.jpeg\n");
    Add(L"a.spi");
    EXPECT_EQ(collection_.GetCommonDialogString(),
              L"すべてのファイル(*.*)|*.*|すべての対応ファイル|*.BMP;*.TST;*.JPG;*.JPEG"
              L"|BMPファイル(*.BMP)|*.BMP|Test plug-in(*.TST)|*.TST|"
              L"A B(*.BMP;*.JPG;*.JPEG)|*.BMP;*.JPG;*.JPEG|");
}

TEST_F(CollectionTest, FilesOfOneNameInTwoFoldersAreTwoPlugins) {
    const std::wstring one = Plugin(L"iftst.spi");
    std::filesystem::create_directories(folder_.Path() + L"b\\a");
    std::filesystem::create_directories(folder_.Path() + L"a");
    const std::wstring other = Plugin(L"iftst.spi", {}, L"a\\iftst.spi");
    const std::wstring third = Plugin(L"iftst.spi", {}, L"b\\a\\iftst.spi");
    Touch(other);
    for (const std::wstring& path : {one, other, third})
        collection_.AddSPI(path);
    EXPECT_EQ(collection_.NameOf(third), L"b\\a\\iftst.spi");
    EXPECT_EQ(collection_.NameOf(L"other.spi"), L"other.spi");
    collection_.Item(other)->SpiSEHError(L"GetPicture");
    EXPECT_EQ(collection_.Item(one)->ErrorCount({}), 0);
    collection_.RemoveAll();
    collection_.AddSPI(one);  // of another date than the one that has failed
    collection_.AddSPI(other);
    EXPECT_EQ(collection_.Item(other)->ErrorCount({}), 1);
    collection_.RemoveAll();
    FreeLibrary(GetModuleHandleW(other.c_str()));  // it was kept loaded
}

TEST(PluginCollectionChild, DISABLED_StaysEmptyWithoutSusiectl) {
    test::RecordedMessages messages;
    CollectionSusie collection;
    EXPECT_EQ(messages.Only(), L"SUSIECTL.DLL が見つかりません");
    EXPECT_EQ(collection.FScanAllSPI(test::TestProgramFolder() + L"plugins\\"), 0);
    char text[255] = {};
    SusieCalls calls(L"x.spi");
    EXPECT_EQ(calls.GetPluginInfo(0, text, 255), -1);
    EXPECT_EQ(calls.TakeFault().function, L"GetPlugInInfo");
}

TEST_F(CollectionTest, StaysEmptyWithoutSusiectl) {
    EXPECT_EQ(RunAsChild(L"PluginCollectionChild.DISABLED_StaysEmptyWithoutSusiectl"), 0U);
}

}  // namespace
}  // namespace tessary
