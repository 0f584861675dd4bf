#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/support/seeds.h"

namespace tessary::spi::test {
namespace {

using namespace tessary::test;

// One of the bundled plug-ins with a picture for it, in memory and in a file.
class BundledPlugin : public testing::TestWithParam<std::pair<const char*, const char*>> {
  protected:
    std::string Write(const Bytes& bytes) const { return Written(folder, bytes); }
    // Behind 128 bytes of something else, as a MacBinary file holds a picture.
    std::string WriteBehindHeader() const {
        Bytes file(128 + picture.size());
        std::copy(picture.begin(), picture.end(), file.begin() + 128);
        return Write(file);
    }

    const std::string name = GetParam().first;
    const LoadedPlugin plugin{name};
    const Bytes picture = Seed(GetParam().second);
    const TemporaryFolder folder;
};

TEST_P(BundledPlugin, IntroducesItself) {
    const int number = plugin.CountTexts("00IN");
    char text[256];
    plugin.getPluginInfo(1, text, sizeof text);
    EXPECT_TRUE(std::string(text).starts_with(name)) << text;
    EXPECT_GT(number, 3);
    EXPECT_EQ(number % 2, 0);
    for (const int unknown : {number + 1, -1})
        EXPECT_EQ(plugin.getPluginInfo(unknown, text, sizeof text), 0) << unknown;
    EXPECT_EQ(plugin.getPluginInfo(0, nullptr, 10), 0);

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

    EXPECT_EQ(plugin.isSupported(Write(picture).c_str(), nullptr), 1);
    const std::string file = WriteBehindHeader();
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
    const auto width = static_cast<uint32_t>(header.width);
    const auto height = static_cast<uint32_t>(header.height);
    EXPECT_EQ(LocalSize(fromMemory.info), dib::InfoBlockSize(header));
    EXPECT_EQ(LocalSize(fromMemory.bits), dib::RowStride(width, header.bitCount) * height);
    EXPECT_EQ(header.sizeImage, LocalSize(fromMemory.bits));
    EXPECT_EQ(LocalFlags(fromMemory.info) & LMEM_LOCKCOUNT, 0u);
    EXPECT_EQ(LocalFlags(fromMemory.bits) & LMEM_LOCKCOUNT, 0u);
    const uint32_t color = fromMemory.Pixels().At(3, 4);

    const HandedPicture fromFile(plugin, Write(picture).c_str(), 0, 0x80);  // a bit of the host's
    ASSERT_EQ(fromFile.result, susie::kSuccess);
    EXPECT_EQ(fromFile.Pixels().At(3, 4), color);
    const HandedPicture fromPart(plugin, WriteBehindHeader().c_str(), 128, susie::kSourceFile);
    ASSERT_EQ(fromPart.result, susie::kSuccess);
    EXPECT_EQ(fromPart.Pixels().At(3, 4), color);

    susie::PictureInfo info{};
    EXPECT_EQ(
        plugin.getPictureInfo(reinterpret_cast<const char*>(picture.data()),
                              static_cast<LONG_PTR>(picture.size()), susie::kSourceMemory, &info),
        susie::kSuccess);
    EXPECT_EQ(info.width, header.width);
    EXPECT_EQ(info.height, header.height);
    EXPECT_EQ(info.colorDepth, header.bitCount);
    EXPECT_EQ(info.xDensity, name == "iftesswic" || name == "iftessgif" ? 0 : 100);
    EXPECT_EQ(info.hInfo, nullptr);
}

// Room for one picture, in which something stands.
struct DirtyRoom : susie::PictureRoom {
    explicit DirtyRoom(bool has)
        : susie::PictureRoom{sizeof(susie::PictureRoom), &Take}, hasRoom(has) {}

    static int __stdcall Take(susie::PictureRoom* asked, SIZE_T infoSize, SIZE_T bitsSize,
                              void** info, void** bits) {
        auto& room = *static_cast<DirtyRoom*>(asked);
        room.info.assign(infoSize, 0xEE);
        room.bits.assign(bitsSize, 0xEE);
        *info = room.info.data();
        *bits = room.bits.data();
        return room.hasRoom ? susie::kRoom : susie::kNoRoom;
    }

    bool hasRoom;
    Bytes info;
    Bytes bits;
};

// Damaged pictures too: what stood in the room is no part of any.
TEST_P(BundledPlugin, PutsTheSamePictureIntoRoomOfTheHosts) {
    int shown = 0;
    for (const Bytes& file : {picture, Cut(picture, picture.size() / 2)}) {
        const char* const source = reinterpret_cast<const char*>(file.data());
        const auto length = static_cast<LONG_PTR>(file.size());
        HandedPicture handed(plugin, Bytes());
        const int result = plugin.getPictureWithAlpha(source, length, susie::kSourceMemory,
                                                      &handed.info, &handed.bits, nullptr, 0);
        DirtyRoom room(true);
        EXPECT_EQ(
            plugin.getPictureInto(source, length, susie::kSourceMemory, &room, nullptr, nullptr, 0),
            result);
        if (result != susie::kSuccess) continue;
        ++shown;
        const auto bytes = [](HLOCAL block) {
            const auto* const begin = static_cast<const uint8_t*>(LocalLock(block));
            return Bytes(begin, begin + LocalSize(block));
        };
        EXPECT_EQ(room.info, bytes(handed.info));
        EXPECT_EQ(room.bits, bytes(handed.bits));
        DirtyRoom none(false);
        EXPECT_EQ(
            plugin.getPictureInto(source, length, susie::kSourceMemory, &none, nullptr, nullptr, 0),
            susie::kOutOfMemory);
    }
    EXPECT_GT(shown, 0);
    EXPECT_EQ(plugin.getPictureInto(nullptr, 0, 0, nullptr, nullptr, nullptr, 0),
              susie::kInternalError);
}

TEST_P(BundledPlugin, AnswersFailuresWithTheirCodeAndNoBlocks) {
    const std::string junk = Write(Bytes(3000, 0x20));
    const std::string missing = junk + ".missing";
    const auto decodeFile = [&](const std::string& name, LONG_PTR offset, uint32_t flag) {
        const HandedPicture handed(plugin, name.c_str(), static_cast<size_t>(offset), flag);
        EXPECT_EQ(handed.info, nullptr);
        EXPECT_EQ(handed.bits, nullptr);
        return handed.result;
    };
    EXPECT_EQ(decodeFile(junk, 0, susie::kSourceFile), susie::kUnknownFormat);
    EXPECT_EQ(decodeFile(junk, 5000, susie::kSourceFile), susie::kBrokenData);
    EXPECT_EQ(decodeFile(junk, -1, susie::kSourceFile), susie::kBrokenData);
    EXPECT_EQ(decodeFile(junk, 0, 5), susie::kInternalError);
    EXPECT_EQ(decodeFile(missing, 0, susie::kSourceFile), susie::kReadError);
    EXPECT_TRUE(DeleteFileA(junk.c_str()));  // nothing keeps the file open
    EXPECT_EQ(HandedPicture(plugin, Cut(picture, 30)).result, susie::kBrokenData);

    const auto stop = [](int, int, LONG_PTR) WINAPI { return 1; };
    const HandedPicture stopped(plugin, picture.data(), picture.size(), susie::kSourceMemory, stop);
    EXPECT_EQ(stopped.result, susie::kAborted);
    EXPECT_EQ(plugin.getPreview(nullptr, 0, 0, nullptr, nullptr, nullptr, 0),
              susie::kNotImplemented);
    EXPECT_EQ(plugin.getPicture(nullptr, 0, 0, nullptr, nullptr, nullptr, 0),
              susie::kInternalError);
    EXPECT_EQ(plugin.getPictureInfo(nullptr, 0, 0, nullptr), susie::kInternalError);
}

INSTANTIATE_TEST_SUITE_P(, BundledPlugin,
                         testing::Values(std::pair("iftessgif", "fuzz_gif/two-frames"),
                                         std::pair("iftessjpeg", "fuzz_jpeg/color"),
                                         std::pair("iftesspng", "fuzz_png/color8"),
                                         std::pair("iftesswic", "fuzz_system_picture/icon")),
                         [](const auto& info) { return std::string(info.param.first); });

}  // namespace
}  // namespace tessary::spi::test
