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
        collection_.AddSPI(path);
    }
    int Asked(const std::wstring& name) { return Calls(folder_.Path() + name, "IsSupported"); }
    // The place of the member that a search finds for a new file, from 1.
    int32_t Find(const wchar_t* name, std::string_view content) {
        return collection_.FileSupported(folder_.Write(name, content));
    }
    CollectionSusie collection_;
};

TEST_F(CollectionTest, ReliablePluginsComeFirst) {
    Add(L"b.spi", "", 2);
    Add(L"a.spi", "", 3);
    Add(L"c.spi");
    Add(L"d.spi", "", 2);
    Add(L"e.spi");
    std::wstring order;
    for (const auto& member : collection_.NewEnum())
        order += FileNameOf(member->DllName()) + L' ';
    EXPECT_EQ(order, L"e.spi c.spi d.spi b.spi a.spi ");

    collection_.RemoveAll();
    for (const auto* keptLoaded : {L"a.spi", L"b.spi", L"d.spi"})
        FreeLibrary(GetModuleHandleW((folder_.Path() + keptLoaded).c_str()));
    Touch(folder_.Path() + L"a.spi");
    collection_.AddSPI(folder_.Path() + L"a.spi");
    EXPECT_EQ(collection_.Item(1).ErrorCount({}), 0);  // a new file has no past
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
    for (int i = 0; i < 50; ++i)
        Plugin(L"minimal.spi", "", std::to_wstring(i) + L".spi");
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 50);
    EXPECT_FALSE(collection_.DynamicLoad());
    EXPECT_EQ(collection_.GetInMemorySPICount(), 50);
    Plugin(L"minimal.spi", "", L"50.spi");
    collection_.RemoveAll();
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 51);
    EXPECT_TRUE(collection_.DynamicLoad());
    EXPECT_EQ(collection_.GetInMemorySPICount(), 0);
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.tst", "TST 1x1x24\n")), 1);
    EXPECT_EQ(collection_.GetInMemorySPICount(), 1);
    collection_.UnloadFile();
    EXPECT_EQ(collection_.GetInMemorySPICount(), 0);
}

TEST_F(CollectionTest, SearchGoesByHintThenPatternThenEverybody) {
    Add(L"3.spi", "info:2:*.jpg\n");
    Add(L"2.spi", "info:2:*.abc\n");
    Add(L"1.spi", "info:2:*.xyz\naccept-all\n");
    const std::wstring abc = folder_.Write(L"a.Abc", "TST 1x1x24\n");
    EXPECT_EQ(collection_.FileSupported(abc), 2);  // by its pattern
    EXPECT_EQ(collection_.Item(2).GetFile(), abc);
    const std::wstring dat = folder_.Write(L"a.dat", "TST 1x1x24\n");
    EXPECT_EQ(collection_.FileSupported(dat), 2);  // accepted last
    EXPECT_EQ(Asked(L"1.spi"), 0);
    EXPECT_EQ(collection_.FileSupported(dat, 3), 3);  // the hint is below the start
    EXPECT_EQ(collection_.FileSupported(dat, 4), 0);
    collection_.RemoveAll();
    Add(L"4.spi");
    Add(L"5.spi", "crash:av:IsSupported\n");
    EXPECT_EQ(collection_.FileSupported(dat), 2);  // everybody is asked, in turn
    EXPECT_EQ(Asked(L"5.spi"), 1);
    Search nobody = collection_.SearchFor(folder_.Write(L"nobody.tst", "text"));
    EXPECT_EQ(nobody.Next(), nullptr);
    EXPECT_EQ(Asked(L"5.spi"), 2);  // claimed it by name, and is not asked a second time
    ASSERT_TRUE(nobody.LastRefusal());
    EXPECT_TRUE(nobody.LastRefusal()->hasCrashed);
    EXPECT_EQ(nobody.LastRefusal()->dllName, folder_.Path() + L"5.spi");
    EXPECT_EQ(collection_.FileSupported(folder_.Path() + L"gone.tst"), 0);
}

TEST_F(CollectionTest, WhoTakesAnythingTakesNothingFromThoseWhoKnowIt) {
    Add(L"4.spi", "info:2:*.*\naccept-all\n");
    Add(L"3.spi", "info:2:*.abc\n");
    Add(L"2.spi", "info:2:*.jpg\naccept-all\n");
    Add(L"1.spi", "info:2:*.xyz\naccept-all\n");
    EXPECT_EQ(Find(L"a.xyz", "text"), 1);
    EXPECT_EQ(Find(L"a.abc", "TST 1x1x24\n"), 3) << "the hint says 1 to everything";
    EXPECT_EQ(Find(L"a.dat", "text"), 4);
    EXPECT_EQ(Find(L"b.abc", "TST 1x1x24\n"), 3) << "the hint claims every name";
    EXPECT_EQ(Find(L"b.dat", "\xFF\xD8\xFF\xE0"), 2) << "by its content";
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(Find((std::to_wstring(i) + L".jpg").c_str(), "text"), 2);
    EXPECT_EQ(Asked(L"2.spi"), 10) << "files of one kind cost one question each";
    EXPECT_EQ(Asked(L"1.spi"), 1);
    // Those whose names mislead do, too.
    collection_.Remove(4);
    EXPECT_EQ(Find(L"c.jpg", "text"), 2);
    Search search = collection_.SearchFor(folder_.Write(L"c.abc", "text"));
    EXPECT_EQ(search.Next(), &collection_.Item(2));
    search.NoteFailure();
    EXPECT_EQ(Find(L"d.abc", "text"), 1);
}

TEST_F(CollectionTest, NothingChangesWhileAPluginIsAtWork) {
    Add(L"a.spi");
    const std::wstring file = folder_.Write(L"a.tst", "TST 2x3x24\n");
    const OwnedBlock block = Block("TST 1x1x24\n");
    ASSERT_EQ(collection_.FileSupported(file), 1);
    clsSusie& plugin = collection_.Item(1);
    clsSusie other;
    other.SetDllName(Plugin(L"minimal.spi"));
    // As the user may do it in a message box that a plug-in shows.
    const auto useTheProgram = [&](int, int) {
        EXPECT_TRUE(PluginCallUnderWay());
        EXPECT_EQ(collection_.FileSupported(file), 0);
        EXPECT_EQ(collection_.MemorySupported(block.Get(), L"a.tst"), 0);
        EXPECT_FALSE(LoadSPI());
        tessary::Picture picture;
        const std::function<void()> refused[] = {
            [&] { plugin.SetDllName(test::TestPluginPath(L"iftst.spi")); },
            [&] { plugin.SetFile({}); },
            [&] { plugin.SetMemoryHandle(nullptr, {}); },
            [&] { other.SetFile(file); },
            [&] { other.SetMemoryHandle(block.Get(), L"a.tst"); },
            [&] { other.CheckFile(file); },
            [&] { other.CheckMemory(block.Get(), L"a.tst"); },
            [&] { other.ShowConfigurationDialog(nullptr); },
            [&] { plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture); },
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
    tessary::Picture picture;
    plugin.DecodePicture(DecodeTarget::kMemory, 0, useTheProgram, {}, &picture);
    EXPECT_TRUE(picture);
    EXPECT_EQ(plugin.GetFile(), file);
    EXPECT_FALSE(PluginCallUnderWay());
}

TEST_F(CollectionTest, AnUnreadableStoreEntryDisablesNoPlugin) {
    const std::wstring path = Plugin(L"iftst.spi");
    const DWORD noText = 1;
    const auto spoil = [&](const wchar_t* section, const wchar_t* key) {
        RegSetKeyValueW(HKEY_CURRENT_USER, (store_.KeyPath() + section).c_str(), key, REG_DWORD,
                        &noText, sizeof(noText));
    };
    spoil(L"\\SPI_DATETIME", path.c_str());
    spoil(L"\\SPI_RUNS", L"1");
    spoil(L"\\SPI_CALLLOG", L"SPI");
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
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.xyz", "text")), 2);
    // Not even the one that accepted last.
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.txt", "text")), 0);
    EXPECT_EQ(Asked(L"any.spi"), 1);
    EXPECT_EQ(Asked(L"jpeg.spi"), 0);
    const OwnedBlock block = Block("\xFF\xD8\xFF\xE0");
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.dat"), 0);
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.jpg"), 1);
    EXPECT_EQ(collection_.Item(1).GetMemoryHandle(), block.Get());
    collection_.UnloadFile();
    EXPECT_EQ(collection_.Item(1).GetMemoryHandle(), nullptr);
    const std::wstring jpeg = folder_.Write(L"a.dat", "\xFF\xD8\xFF\xE0");
    EXPECT_EQ(collection_.FileSupported(jpeg), 1);  // by its content
    EXPECT_TRUE(collection_.Item(1).CheckMode());
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
    EXPECT_EQ(archive.GetFile(), file);
    EXPECT_EQ(collection_.ArchivePlugin(file), &archive);
    EXPECT_EQ(Calls(archivePlugin, "GetArchiveInfo"), 1);

    const OwnedBlock picture = Block("TST 1x1x24\n");
    Search search = collection_.SearchFor(picture.Get(), L"a.tst");
    EXPECT_EQ(search.Next(), &collection_.Item(2));
    EXPECT_EQ(search.Next(), &collection_.Item(3));
    EXPECT_EQ(search.Next(), nullptr);
    collection_.UnloadMemory();
    EXPECT_FALSE(collection_.Item(2).IsBound() || collection_.Item(3).IsBound());
    EXPECT_EQ(archive.GetFile(), file);

    collection_.UnloadFile();
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

TEST_F(CollectionTest, ACrashWhileItIsLoadedAnewIsToldOfTheFile) {
    CollectionSusie plugins;
    plugins.SetDynamicLoad(true);
    plugins.AddSPI(Plugin(L"iftst.spi"));
    folder_.Write(L"iftst.spi.script", "crash:av:DllMain\n");
    Search search = plugins.SearchFor(folder_.Write(L"a.tst", "TST 2x2x24\n"));
    EXPECT_EQ(search.Next(), nullptr);
    ASSERT_TRUE(search.LastRefusal());
    EXPECT_TRUE(search.LastRefusal()->hasCrashed);
    EXPECT_EQ(search.LastRefusal()->dllName, folder_.Path() + L"iftst.spi");
}

TEST_F(CollectionTest, FilesOfOneNameInTwoFoldersAreTwoPlugins) {
    const std::wstring one = Plugin(L"iftst.spi");
    const std::wstring other = folder_.Path() + L"a\\iftst.spi";
    const std::wstring third = folder_.Path() + L"b\\a\\iftst.spi";
    for (const std::wstring& copy : {other, third}) {
        std::filesystem::create_directories(FolderOf(copy));
        std::filesystem::copy_file(one, copy);
    }
    Touch(other);
    for (const std::wstring& path : {one, other}) {
        collection_.AddSPI(path);
        EXPECT_EQ(collection_.NameOf(one) == L"iftst.spi", path == one);
    }
    collection_.AddSPI(third);
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
