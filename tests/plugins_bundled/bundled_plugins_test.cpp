#include <climits>

#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/made_pictures.h"
#include "tests/support/temporary_folder.h"

namespace tessary::spi::test {
namespace {

using namespace codec::test;

// One of the bundled plug-ins with a picture for it, in memory and in a file.
class BundledPlugin : public testing::TestWithParam<const char*> {
  protected:
    static Bytes PictureFor(const std::string& name) {
        return name == "iftjpeg" ? MakeJpeg({}) : name == "iftpng" ? MakePng({}) : MakeGif();
    }
    // A file with the picture behind some bytes of something else, as MacBinary holds it.
    std::string Write(size_t position) const {
        std::string content(position, ' ');
        content.append(picture.begin(), picture.end());
        const std::wstring path = folder.Write(L"picture", content);
        return {path.begin(), path.end()};
    }

    const LoadedPlugin plugin{GetParam()};
    const Bytes picture = PictureFor(GetParam());
    const tessary::test::TemporaryFolder folder;
};

TEST_P(BundledPlugin, IntroducesItself) {
    char text[256];
    EXPECT_EQ(plugin.getPluginInfo(0, text, sizeof text), 4);
    EXPECT_STREQ(text, "00IN");
    plugin.getPluginInfo(1, text, sizeof text);
    EXPECT_TRUE(std::string(text).starts_with(GetParam())) << text;
    int number = 2;
    while (plugin.getPluginInfo(number, text, sizeof text) > 0) {
        EXPECT_EQ(number % 2 == 0, std::string(text).starts_with("*.")) << text;
        ++number;
    }
    EXPECT_GT(number, 3);
    for (const int unknown : {number + 1, -1, INT_MAX, INT_MIN})
        EXPECT_EQ(plugin.getPluginInfo(unknown, text, sizeof text), 0) << unknown;
    EXPECT_EQ(plugin.getPluginInfo(0, nullptr, 10), 0);
    EXPECT_EQ(plugin.getPluginInfo(0, text, 0), 0);

    // Whatever the buffer's size, the text ends within it, and never in half a character.
    const int full = plugin.getPluginInfo(3, text, sizeof text);
    for (int size = 1; size <= full + 1; ++size) {
        std::memset(text, '#', sizeof text);
        const int count = plugin.getPluginInfo(3, text, size);
        EXPECT_LE(count, size - 1);
        EXPECT_EQ(text[count], '\0');
        EXPECT_EQ(text[size], '#');
        EXPECT_GT(MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0), 0);
    }
}

TEST_P(BundledPlugin, TellsItsFilesByHeaderHandleOrName) {
    Bytes header = picture;
    header.resize(susie::kHeaderBlockSize);
    EXPECT_EQ(plugin.isSupported("anything.xyz", header.data()), 1);
    const Bytes junk(susie::kHeaderBlockSize, 0x20);
    EXPECT_EQ(plugin.isSupported("picture.jpg", junk.data()), 0);

    EXPECT_EQ(plugin.isSupported(Write(0).c_str(), nullptr), 1);
    const std::string file = Write(128);
    EXPECT_EQ(plugin.isSupported(file.c_str(), nullptr), 0);
    EXPECT_EQ(plugin.isSupported(nullptr, nullptr), 0);

    // A handle is read at its position, and stays there.
    const HANDLE handle = CreateFileA(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(plugin.isSupported(file.c_str(), handle), 0);
    SetFilePointer(handle, 128, nullptr, FILE_BEGIN);
    EXPECT_EQ(plugin.isSupported(file.c_str(), handle), 1);
    EXPECT_EQ(SetFilePointer(handle, 0, nullptr, FILE_CURRENT), 128u);
    CloseHandle(handle);
}

TEST_P(BundledPlugin, DecodesMemoryFilesAndPartsOfFiles) {
    const HandedPicture fromMemory(plugin, picture);
    ASSERT_EQ(fromMemory.result, susie::kSuccess);
    const dib::BitmapInfoHeader header = fromMemory.Header();
    EXPECT_EQ(LocalSize(fromMemory.info), dib::InfoBlockSize(header));
    EXPECT_EQ(header.sizeImage, LocalSize(fromMemory.bits));
    EXPECT_EQ(LocalFlags(fromMemory.info) & LMEM_LOCKCOUNT, 0u);
    EXPECT_EQ(LocalFlags(fromMemory.bits) & LMEM_LOCKCOUNT, 0u);
    for (const size_t position : {0, 128}) {
        const HandedPicture fromFile(plugin, Write(position).c_str(), position,
                                     position == 0 ? 0x80 : susie::kSourceFile);  // a host's bit
        ASSERT_EQ(fromFile.result, susie::kSuccess);
        EXPECT_EQ(fromFile.Pixels().bgra, fromMemory.Pixels().bgra);
    }

    susie::PictureInfo info{};
    EXPECT_EQ(
        plugin.getPictureInfo(reinterpret_cast<const char*>(picture.data()),
                              static_cast<LONG_PTR>(picture.size()), susie::kSourceMemory, &info),
        susie::kSuccess);
    EXPECT_EQ(info.width, header.width);
    EXPECT_EQ(info.height, header.height);
    EXPECT_EQ(info.colorDepth, header.bitCount);
    EXPECT_EQ(info.xDensity, GetParam() == std::string("iftwic") ? 0 : 100);
    EXPECT_EQ(info.hInfo, nullptr);
}

TEST_P(BundledPlugin, AnswersFailuresWithTheirCodeAndNoBlocks) {
    const std::string file = Write(3000);
    const std::string missing = file + ".missing";
    const struct {
        const std::string& name;
        int offset;
        uint32_t flag;
        int result;
    } cases[] = {{file, 0, susie::kSourceFile, susie::kUnknownFormat},
                 {file, 99999, susie::kSourceFile, susie::kBrokenData},
                 {file, -1, susie::kSourceFile, susie::kBrokenData},
                 {file, 0, 5, susie::kInternalError},
                 {missing, 0, susie::kSourceFile, susie::kReadError}};
    for (const auto& c : cases) {
        const HandedPicture handed(plugin, c.name.c_str(), static_cast<size_t>(c.offset), c.flag);
        EXPECT_EQ(handed.result, c.result) << &c - cases;
        EXPECT_TRUE(handed.info == nullptr && handed.bits == nullptr);
    }
    EXPECT_TRUE(DeleteFileA(file.c_str()));  // nothing keeps the file open
    EXPECT_EQ(HandedPicture(plugin, Bytes(picture.begin(), picture.begin() + 30)).result,
              susie::kBrokenData);

    int calls = 0;
    const susie::ProgressCallback stop = [](int, int, LONG_PTR counter) WINAPI {
        ++*reinterpret_cast<int*>(counter);
        return 1;
    };
    const HandedPicture stopped(plugin, picture.data(), picture.size(), susie::kSourceMemory, stop,
                                reinterpret_cast<LONG_PTR>(&calls));
    EXPECT_EQ(stopped.result, susie::kAborted);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(plugin.getPicture(nullptr, 0, 0, nullptr, nullptr, nullptr, 0),
              susie::kInternalError);
    EXPECT_EQ(plugin.getPictureInfo(nullptr, 0, 0, nullptr), susie::kInternalError);
}

INSTANTIATE_TEST_SUITE_P(, BundledPlugin, testing::Values("iftjpeg", "iftpng", "iftwic"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
}  // namespace tessary::spi::test
