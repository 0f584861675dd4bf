// Saving: which writer a name calls, and what it is given.
#include "picture/save/save_picture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "app/base/paths.h"
#include "helpers/dib/dib_view.h"
#include "picture/bitmap_file.h"
#include "picture/save/save_progress.h"
#include "tests/support/content_of.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

// A bitmap file's image whose rows stand `bitsOffset` bytes behind the info header.
std::string FileImage(uint16_t depth, uint32_t colorsUsed, uint32_t compression,
                      uint32_t bitsOffset, const std::string& rows) {
    const dib::BitmapInfoHeader header{40, 8, 1, 1, depth, compression, 0, 0, 0, colorsUsed, 0};
    std::string image(dib::kFileHeaderSize, 'F');
    image.append(reinterpret_cast<const char*>(&header), sizeof(header));
    if (compression == dib::kCompressionBitFields) {
        image.append(reinterpret_cast<const char*>(dib::kMasks565), sizeof(dib::kMasks565));
    }
    image.resize(dib::kFileHeaderSize + bitsOffset);
    return image + rows;
}

OwnedBlock BlockOf(const std::string& bytes) {
    return FilledBlock(bytes.size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes.data(), bytes.size());
    });
}

int progressCalls = 0;

int __stdcall CountCall(int, int, LONG_PTR) {
    ++progressCalls;
    return 0;
}

class SavePictureTest : public testing::Test {
  protected:
    SavePictureTest() { test::LoadHelperLibraries(); }
    bool SaveImage(const std::string& image, const std::wstring& name) {
        const OwnedBlock block = BlockOf(image);
        return SavePictureFile(PicturePair{block.Get(), nullptr}, folder_.Path() + name, {}, 0);
    }

    test::RedirectedSettings settings_;
    test::TemporaryFolder folder_;
};

TEST_F(SavePictureTest, ExtensionChoosesTheWriter) {
    const OwnedBlock info = BlockOf(FileImage(24, 0, 0, 40, "").substr(dib::kFileHeaderSize));
    const OwnedBlock bits = BlockOf(std::string(24, 'x'));
    const PicturePair pair{info.Get(), bits.Get()};
    const auto progress = reinterpret_cast<LONG_PTR>(&CountCall);
    const struct {
        const wchar_t* name;
        bool isSaved;
        const char* start;
        bool tellsProgress;
    } table[] = {
        {L"a.bmp", true, "BM", false},
        {L"b.PnG", true, "\x89PNG", true},
        {L"c.jpg", true, "\xFF\xD8", true},
        {L"한글.JPG", true, "\xFF\xD8", true},
        {L"d.jpeg", false, "", false},
        {L"e", false, "", false},
        {L"f.bmp.gif", false, "", false},
        {LR"(no folder\g.png)", false, "", false},
        {LR"(no folder\g.bmp)", false, "", false},
        {LR"(no folder\g.jpg)", false, "", false},
    };
    for (const auto& [name, isSaved, start, tellsProgress] : table) {
        progressCalls = 0;
        const std::wstring path = folder_.Path() + name;
        EXPECT_EQ(SavePictureFile(pair, path, {}, progress), isSaved) << name;
        EXPECT_EQ(PathExists(path), isSaved) << name;
        EXPECT_EQ(progressCalls > 0, tellsProgress) << name;
        EXPECT_TRUE(test::ContentOf(path).starts_with(start)) << name;
    }
    EXPECT_FALSE(
        SavePictureFile(PicturePair{nullptr, bits.Get()}, folder_.Path() + L"h.bmp", {}, 0));
    const OwnedBlock tooFew = BlockOf(std::string(20, 'x'));
    EXPECT_FALSE(
        SavePictureFile(PicturePair{info.Get(), tooFew.Get()}, folder_.Path() + L"h.bmp", {}, 0));
    EXPECT_EQ(LocalFlags(info.Get()) & 0xFF, 0U) << "still locked";
}

TEST_F(SavePictureTest, StoppedWriterLeavesTheOldFile) {
    const OwnedBlock info = BlockOf(FileImage(24, 0, 0, 40, "").substr(dib::kFileHeaderSize));
    const OwnedBlock bits = BlockOf(std::string(24, 'x'));
    const PicturePair pair{info.Get(), bits.Get()};
    for (const wchar_t* const name : {L"a.png", L"b.jpg"}) {
        const std::wstring path = folder_.Write(name, "mine");
        const auto save = [&](const dib::Progress& tell) {
            const SaveProgress progress(tell);
            return SavePictureFile(pair, path, {}, SaveProgress::PassThrough());
        };
        EXPECT_FALSE(save([](int) { return false; })) << name;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANCELLED)) << name;
        EXPECT_FALSE(save([](int) -> bool { throw std::bad_alloc(); })) << name;
        EXPECT_EQ(std::filesystem::file_size(path), 4U) << name;
        int last = 0;
        EXPECT_TRUE(save([&](int percent) { return (last = percent) <= 100; })) << name;
        EXPECT_EQ(last, 100) << name;
        EXPECT_TRUE(SavePictureFile(pair, path, {}, SaveProgress::PassThrough()))
            << "nobody watches";
    }
}

TEST_F(SavePictureTest, InfoBlockMayHoldAWholeFile) {
    const struct {
        uint16_t depth;
        uint32_t colorsUsed;
        uint32_t compression;
        uint32_t bitsOffset;
    } table[] = {{1, 0, 0, 48},  {1, 1, 0, 48},   {4, 0, 0, 104},
                 {4, 3, 0, 52},  {8, 0, 0, 1064}, {8, 5, 0, 60},
                 {24, 0, 0, 40}, {32, 0, 0, 40},  {16, 0, dib::kCompressionBitFields, 52}};
    for (const auto& [depth, colorsUsed, compression, bitsOffset] : table) {
        std::string rows(dib::RowStride(8, depth), '\0');
        for (size_t i = 0; i < rows.size(); ++i)
            rows[i] = depth <= 8 ? static_cast<char>(i % 2) : static_cast<char>(i * 5);
        const std::string image = FileImage(depth, colorsUsed, compression, bitsOffset, rows);
        EXPECT_TRUE(SaveImage(image, L"a.bmp")) << depth << ' ' << colorsUsed;
        Picture read;
        ASSERT_TRUE(ReadBitmapFile(folder_.Path() + L"a.bmp", read));
        const size_t meaningful = dib::RowBytes(8, depth);
        EXPECT_EQ(std::memcmp(read.Bits().data(), rows.data(), meaningful), 0) << depth;

        EXPECT_FALSE(
            SaveImage(image.substr(0, image.size() - rows.size() + meaningful - 1), L"b.bmp"))
            << depth;
        EXPECT_FALSE(SaveImage(image.substr(0, 20), L"b.png")) << depth;
    }
    EXPECT_FALSE(SaveImage(FileImage(8, 0xFFFFFFFF, 0, 60, "12345678"), L"b.bmp"));
    EXPECT_FALSE(PathExists(folder_.Path() + L"b.bmp"));
}

}  // namespace
}  // namespace tessary
