
#include <array>

#include "app/base/text.h"
#include "helpers/convertdib/convertdib.h"
#include "tests/helpers/dib/sample_bitmaps.h"
#include "tests/support/loaded_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary::convertdib::test {
namespace {

using dib::test::Bytes;
using dib::test::TestBitmap;

const TestBitmap kSmall{2, 2, 8, dib::test::k8Bits, dib::test::kRgbw};

std::string Content(const TestBitmap& bitmap) {
    const Bytes file = bitmap.File();
    return {file.begin(), file.end()};
}

class LoadBitmapFile : public testing::Test {
  protected:
    // The picture, as text, that a call with this result has left; frees its block.
    std::string Taken(int result) {
        if (result == 0) return record_.bits == nullptr ? "failed" : "failed with a block";
        const HLOCAL block = LocalHandle(record_.bits);
        const auto view =
            dib::DibView::Of(info_, {static_cast<const uint8_t*>(record_.bits), LocalSize(block)});
        std::string picture = view ? dib::test::Show(*view) : "not plain";
        EXPECT_EQ(LocalFlags(block) & LMEM_LOCKCOUNT, 1u);
        LocalUnlock(block);
        EXPECT_EQ(LocalFree(block), nullptr);
        return picture;
    }
    std::string Load(const wchar_t* name, ProgressCallback progress = nullptr) {
        return Taken(loadW_(name, &record_, progress, 0));
    }

    tessary::test::TemporaryFolder folder_;
    tessary::test::LoadedLibrary library_{L"convertdib.dll"};
    LoadBITMAPFileFunction loadA_ = library_[kLoadBITMAPFileName];
    LoadBITMAPFileWFunction loadW_ = library_[kLoadBITMAPFileWName];
    std::array<uint8_t, dib::kMaxInfoBlockSize> info_{};
    BitmapReadRecord record_{info_.data(), nullptr, nullptr, nullptr};
};

TEST_F(LoadBitmapFile, OpensNamesOfEveryKind) {
    std::wstring source;
    for (const wchar_t* name : {L"plain.bmp", L"한글 \U0001F600.bmp", L"表示 ソ.bmp"}) {
        source = folder_.Write(name, Content(kSmall));
        EXPECT_EQ(Load(source.c_str()), "RG/BW");
    }
    EXPECT_EQ(Taken(loadA_(ToAnsi(source).c_str(), &record_, nullptr, 0)), "RG/BW");

    const std::wstring deep = LR"(\\?\)" + folder_.Deep() + L"長い.bmp";
    ASSERT_TRUE(CopyFileW(source.c_str(), deep.c_str(), TRUE));
    EXPECT_EQ(Load(deep.c_str()), "RG/BW");
    EXPECT_EQ(Load(deep.c_str() + 4), "RG/BW");
}

TEST_F(LoadBitmapFile, WritesTheColorTableWhereTheRecordSays) {
    std::array<uint8_t, 1024> table{};
    record_.colorTable = table.data();
    ASSERT_EQ(Load(folder_.Write(L"a.bmp", Content(kSmall)).c_str()), "../..");
    EXPECT_EQ(Bytes(&table[0], &table[8]), Bytes({0, 0, 255, 0, 0, 255, 0, 0}));
}

TEST_F(LoadBitmapFile, FailsWithoutTrace) {
    const std::wstring bad = folder_.Write(L"bad.bmp", "BMW");
    const std::wstring huge = folder_.Write(L"huge.bmp", Content({20000, 20000, 32, {1}}));
    const std::wstring good = folder_.Write(L"good.bmp", Content(kSmall));
    const std::wstring folder = folder_.Path();
    const wchar_t* const none = nullptr;
    for (const wchar_t* name :
         {none, L"", L"no such file.bmp", L"NUL", bad.c_str(), huge.c_str(), folder.c_str()}) {
        record_.bits = this;
        EXPECT_EQ(Load(name), "failed");
    }
    const auto stop = [](int, int, LONG_PTR) __attribute__((stdcall)) {
        return 1;
    };
    EXPECT_EQ(Load(good.c_str(), stop), "failed");
    EXPECT_EQ(info_, decltype(info_){});
    EXPECT_EQ(loadW_(good.c_str(), nullptr, nullptr, 0), 0);
    record_.info = nullptr;
    EXPECT_EQ(Load(good.c_str()), "failed");
}

TEST_F(LoadBitmapFile, SharesTheFileAndTellsProgress) {
    constexpr DWORD kAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const std::wstring path = folder_.Write(L"a.bmp", Content(kSmall));
    const UniqueFile other(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kAll,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(other);
    const auto note = [](int done, int total, LONG_PTR last) __attribute__((stdcall)) {
        EXPECT_EQ(total, 100);
        *reinterpret_cast<int*>(last) = done;
        return 0;
    };
    int last = 0;
    EXPECT_EQ(Taken(loadW_(path.c_str(), &record_, note, reinterpret_cast<LONG_PTR>(&last))),
              "RG/BW");
    EXPECT_EQ(last, 100);
}

}  // namespace
}  // namespace tessary::convertdib::test
