// What is told of a picture, in words.
#include "picture/metadata/info_lines.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/src/ui/test_picture.h"

namespace tessary {
namespace {

using metadata::FieldKind;

std::map<std::wstring, std::wstring> ByLabel(const std::vector<InfoLine>& lines) {
    std::map<std::wstring, std::wstring> found;
    for (const InfoLine& line : lines)
        found[line.label] = line.value;
    return found;
}

TEST(InfoLines, TellWhatThePhotographSays) {
    const std::vector<InfoLine> expected = {{L"撮影日時", L"2024/05/31 12:34:56"},
                                            {L"カメラ", L"山田"},
                                            {L"露出時間", L"1/250 秒"},
                                            {L"絞り", L"f/2.8"},
                                            {L"フラッシュ", L"非発光（自動）"},
                                            {L"向き", L"右に 90 度回転"},
                                            {L"コメント", L"一行 二行"}};
    EXPECT_EQ(MetadataLines({{FieldKind::kDateTaken, "2024:05:31 12:34:56"},
                             {FieldKind::kModel, "\x8E\x52\x93\x63"},
                             {FieldKind::kExposureTime, "1/250"},
                             {FieldKind::kFNumber, "2.8"},
                             {FieldKind::kFlash, "24"},
                             {FieldKind::kOrientation, "6"},
                             {FieldKind::kComment, "一行\n二行"}}),
              expected);
    // What says nothing, or cannot be, is left out.
    EXPECT_TRUE(MetadataLines({{FieldKind::kDateTaken, "0000:00:00 00:00:00"},
                               {FieldKind::kOrientation, "9"},
                               {FieldKind::kComment, "\x1B\x01\xE2\x80\xAE"},
                               {static_cast<FieldKind>(99), "x"}})
                    .empty());
}

TEST(InfoLines, TellWhatTheProgramKnows) {
    Picture picture = test::TestPicture(400, 300);
    EXPECT_EQ(ByLabel(PictureLines(picture, {}, {})).size(), 2u) << "pasted: nobody knows whence";
    PictureOrigin origin{
        .path = LR"(C:\写真\海.jpg)", .plugin = L"x", .milliseconds = 1234, .depth = 8};
    origin.stamp.size = 1234567;
    origin.stamp.changed = 133'000'000'000'000'000;
    picture.SetOrigin(std::make_shared<const PictureOrigin>(origin));
    auto lines = ByLabel(PictureLines(picture.Another(), L"x.spi", L"切れています"));
    EXPECT_EQ(lines[L"サイズ"], L"1.2 MB (1,234,567 バイト)");
    EXPECT_NE(lines[L"画像"].find(L"、8 ビット"), std::wstring::npos) << "as it came";
    EXPECT_EQ(lines[L"更新日時"].substr(0, 7), L"2022/06");
    EXPECT_EQ(lines[L"損傷"], L"切れています");
    origin.member = L"sub/山.jpg";
    origin.memberSize = 12;
    picture.SetOrigin(std::make_shared<const PictureOrigin>(origin));
    lines = ByLabel(PictureLines(picture, {}, {}));
    EXPECT_EQ(lines[L"書庫"], LR"(C:\写真\海.jpg)");
    EXPECT_EQ(lines[L"サイズ"], L"12 バイト");
}

}  // namespace
}  // namespace tessary
