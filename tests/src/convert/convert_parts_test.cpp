// The engine's small parts: filters, masks, files.
#include "app/base/text.h"
#include "convert/decode_filter.h"
#include "convert/delete_files.h"
#include "convert/make_folder.h"
#include "convert/name_mask.h"
#include "tests/src/convert/convert_test.h"

namespace tessary::test {
namespace {

TEST(NameMask, Language) {
    // A mask, names that match it with blanks between, and others.
    const wchar_t* const table[][3] = {
        {L"*.jpg", L"a.jpg .jpg a.b.jpg .jpg.jpg", L"A.JPG a.jpg.x a.jpgx ajpg"},
        {L"*", L"a .", L""},
        {L"a?c", L"abc a?c", L"ac abbc Abc"},
        {L"p##.*", L"p01.a p99.", L"p1.a pab.x p０１.a"},
        {L"[abx-z].t", L"a.t y.t z.t", L"c.t w.t .t ab.t"},
        {L"[!a-c]*", L"d dx !", L"a bx c"},
        {L"[-a][a-][!-]", L"-ab aa! --a", L"--- bb-"},
        {L"[*?#[]x", L"*x ?x #x [x", L"ax 1x ]x"},
        {L"a[]b", L"ab", L"a]b a[]b"},
        {L"[!]", L"!", L"a ]"},
        {L"[c-a]", L"", L"a b c -"},
        {L"a[b", L"a[b", L"ab"},
        {L"*a*b*c", L"abc xaxbxc abcabc aabbcc", L"acb abcx bc"},
        {L"写真[あ-ん]*", L"写真あ.jpg 写真ん", L"写真ア.jpg"},
    };
    std::vector<std::wstring> names;
    for (const auto& [mask, matching, others] : table) {
        for (const bool matches : {true, false}) {
            SplitText(matches ? matching : others, L' ', names);
            for (const std::wstring& name : names)
                EXPECT_TRUE(name.empty() || MatchesNameMask(name, mask) == matches)
                    << mask << ' ' << name;
        }
    }
    EXPECT_TRUE(MatchesNameMask(L"", L"*[]"));
    EXPECT_FALSE(MatchesNameMask(L"", L"?"));
    // Patterns that invite to try every split.
    EXPECT_FALSE(MatchesNameMask(std::wstring(5000, L'a'), L"*a*a*a*a*a*a*a*a*[!a]"));
}

TEST(DecodeFilter, NamesAndSizes) {
    ConvertSettings convert;
    convert.decodeFileMask = L"*.a";
    // use, set → x.a passes, x.b passes
    const int names[][4] = {{0, 7, 1, 1}, {1, 0, 1, 0}, {1, 1, 0, 1}, {1, 2, 0, 0}, {2, 0, 0, 0}};
    for (const auto& [use, set, a, b] : names) {
        convert.useDecodeFileMask = static_cast<int16_t>(use);
        convert.decodeFileMaskSet = static_cast<int16_t>(set);
        EXPECT_EQ(CheckDecodeFileName(L"x.a", convert), a == 1) << use << set;
        EXPECT_EQ(CheckDecodeFileName(L"x.b", convert), b == 1) << use << set;
    }
    convert.minDecodeSizeX = 100;
    convert.minDecodeSizeY = 50;
    // switch, both, width, height → passes
    const int sizes[][5] = {{0, 1, 1, 1, 1},     {2, 1, 1, 1, 1},    {1, 0, 100, 100, 1},
                            {1, 1, 100, 100, 0}, {1, 1, 101, 51, 1}, {1, 0, 100, 50, 0}};
    for (const auto& [on, both, width, height, passes] : sizes) {
        convert.noDecodeSmall = static_cast<int16_t>(on);
        convert.decodeSizeBoth = both == 1;
        EXPECT_EQ(CheckDecodeSize(width, height, convert), passes == 1) << on << both << width;
    }
}

TEST(ConvertFilesOnDisk, FoldersAndDeleting) {
    const TemporaryFolder folder;
    EXPECT_TRUE(MakeFolder(folder.Path() + LR"(a\b\c\)"));
    EXPECT_TRUE(MakeFolder(folder.Path() + LR"(a\b)"));
    const std::wstring file = folder.Write(L"x1.t");
    for (const std::wstring& bad : {file, file + L"\\y", folder.Path() + L"a*", std::wstring()})
        EXPECT_FALSE(MakeFolder(bad)) << bad;

    MakeFolder(folder.Path() + L"x3.t");
    SetFileAttributesW(folder.Write(L"x2.t").c_str(),
                       FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    folder.Write(L"y.t");
    EXPECT_TRUE(DeleteFiles(folder.Path() + L"x?.t", false));
    EXPECT_TRUE(DeleteFiles(L"", true));
    EXPECT_TRUE(DeleteFiles(folder.Path(), true));
    EXPECT_EQ(FilesInFolder(folder.Path()).size(), 3U);
    EXPECT_TRUE(DeleteFiles(folder.Path() + L"x?.t", true));
    EXPECT_EQ(FilesInFolder(folder.Path()), std::vector{folder.Path() + L"y.t"});
    EXPECT_TRUE(IsFolder(folder.Path() + L"x3.t"));
}

}  // namespace
}  // namespace tessary::test
