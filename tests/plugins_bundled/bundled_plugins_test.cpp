#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/system_pictures.h"
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
    EXPECT_EQ(info.xDensity, name == "iftessjpeg" || name == "iftesspng" ? 100 : 0);
    EXPECT_EQ(info.hInfo, nullptr);
}

// Room for one picture, in which something stands.
struct DirtyRoom : susie::PictureRoom {
    explicit DirtyRoom(bool has)
        : susie::PictureRoom{sizeof(susie::PictureRoom), &Take, 0, 0}, hasRoom(has) {}

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

// A second page whose pixels are another strip.
Bytes TwoPages() {
    Bytes file = codec::test::SystemPicture("tiff");
    const size_t first = file[4];
    const Bytes directory(file.begin() + static_cast<ptrdiff_t>(first),
                          file.begin() + codec::test::kTiffLink + 4);
    const size_t strip = file.size();
    file.resize(strip + 4);
    const size_t second = file.size();
    file.insert(file.end(), directory.begin(), directory.end());
    file = With(std::move(file), codec::test::kTiffLink, second, 4);
    const size_t offsets = codec::test::TiffAt(codec::test::kTiffOffsets) - first + second;
    return With(std::move(file), offsets + 8, strip, 4);
}

TEST(BundledFrames, ComeFromFilesThatMayGoAndFromBlocks) {
    const struct {
        const char* name;
        Bytes file;
        int32_t kind;
        std::vector<int32_t> widths;
    } all[] = {
        {"iftessgif", Seed("fuzz_gif/two-frames"), susie::kFrameAnimation, {12, 12}},
        {"iftessmisc", Seed("fuzz_misc/dcx"), susie::kFramePages, {9, 9}},
        {"iftesspng", Seed("fuzz_png/animated"), susie::kFrameAnimation, {7, 7, 7, 7, 7}},
        {"iftesswic", Seed("fuzz_system_picture/icon"), susie::kFramePages, {16, 12, 8}},
        {"iftesswic", TwoPages(), susie::kFramePages, {16, 16}},
    };
    const TemporaryFolder folder;
    for (const auto& [name, file, kind, widths] : all) {
        const LoadedFramesPlugin plugin{name};
        const std::string path = Written(folder, file);
        const auto* const block = reinterpret_cast<const char*>(file.data());
        susie::FrameList list{sizeof list, 0, 0, 0};
        void* opened[2] = {};
        EXPECT_EQ(plugin.openFrames(path.c_str(), 0, susie::kSourceFile, &list, &opened[0]), 0);
        EXPECT_EQ(list.kind, kind);
        ASSERT_EQ(list.count, widths.size());
        EXPECT_EQ(plugin.openFrames(block, static_cast<LONG_PTR>(file.size()), susie::kSourceMemory,
                                    &list, &opened[1]),
                  0);
        for (uint32_t index = 0; index < list.count; ++index) {
            DirtyRoom rooms[2] = {DirtyRoom(true), DirtyRoom(true)};
            uint32_t duration = 0;
            for (int i = 0; i < 2; ++i)
                ASSERT_EQ(
                    plugin.getFrame(opened[i], index, &duration, &rooms[i], nullptr, nullptr, 0),
                    susie::kSuccess);
            EXPECT_EQ(rooms[0].bits, rooms[1].bits);
            dib::BitmapInfoHeader header{};
            std::memcpy(&header, rooms[0].info.data(), sizeof header);
            EXPECT_EQ(header.width, widths[index]) << name;
            // The middle icon is half transparent; the second page of the other is all white.
            const auto view = dib::DibView::Of(rooms[0].info, rooms[0].bits);
            ASSERT_TRUE(view);
            const Colors colors(*view);
            if (widths[0] == 16 && index == 0) {
                const bool isIcon = widths.size() == 3;
                EXPECT_NEAR(colors.Channel(5, 1, 3), isIcon ? 128 : 255, 1);
                EXPECT_EQ(colors.At(1, 0), isIcon ? 0x204060u : 0u);
            } else if (widths[0] == 16 && widths.size() == 2) {
                EXPECT_EQ(colors.At(1, 0), 0xFFFFFFu);
            }
        }
        uint32_t duration = 0;
        DirtyRoom room(true), none(false);
        const auto get = [&](uint32_t index, susie::PictureRoom* into) {
            return plugin.getFrame(opened[0], index, &duration, into, nullptr, nullptr, 0);
        };
        EXPECT_EQ(get(list.count, &room), susie::kInternalError);
        EXPECT_EQ(get(0, &none), susie::kOutOfMemory);
        EXPECT_EQ(get(0, nullptr), susie::kInternalError);
        room.size = sizeof room.size + sizeof room.take;  // of a host of the first kind
        EXPECT_EQ(get(0, &room), susie::kSuccess);
        EXPECT_TRUE(DeleteFileA(path.c_str()));  // nothing keeps it open
        EXPECT_EQ(get(0, &room), susie::kReadError);
        Written(folder, Cut(file, 40));
        EXPECT_NE(get(list.count - 1, &room), susie::kMemoryError);  // whatever it may be
        for (void* const frames : opened)
            EXPECT_EQ(plugin.closeFrames(frames), 0);
        void* still = &room;
        EXPECT_EQ(plugin.openFrames(path.c_str(), 0, 0, &list, &still), susie::kSuccess);
        EXPECT_EQ(still, nullptr);
        EXPECT_EQ(list.count, 0u);
    }
}

INSTANTIATE_TEST_SUITE_P(, BundledPlugin,
                         testing::Values(std::pair("iftessgif", "fuzz_gif/two-frames"),
                                         std::pair("iftessjpeg", "fuzz_jpeg/color"),
                                         std::pair("iftessmisc", "fuzz_misc/sgi-runs"),
                                         std::pair("iftesspng", "fuzz_png/color8"),
                                         std::pair("iftesswic", "fuzz_system_picture/icon")),
                         [](const auto& info) { return std::string(info.param.first); });

}  // namespace
}  // namespace tessary::spi::test
