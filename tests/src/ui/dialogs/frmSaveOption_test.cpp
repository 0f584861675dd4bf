// The dialog that edits how files are saved.
#include "ui/dialogs/frmSaveOption.h"

#include <gtest/gtest.h>

#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"

namespace tessary::test {
namespace {

TEST(SaveOptionTest, EachFormatHasItsPanel) {
    frmSaveOption form;
    saving::SaveOptions all;
    auto& [bmp, png, jpeg, backdrop, pngExif, jpegExif, pngPosition, jpegPosition, pngProfile,
           jpegProfile, keepDates] = all;
    all = {{.saveType = 1, .saveRLE = 1}, {.quality = 99}, {.quality = 75, .progressive = 1}};
    const auto edit = [&](int32_t format) {
        return form.Edit(nullptr, *SaverFormatAt(format), all);
    };
    DrivenDialog user({[](HWND dialog) {
                           EXPECT_TRUE(HasFocus(dialog, sliderJpegQuality));
                           EXPECT_EQ(TextOf(dialog, valueJpegQuality), L"70");  // in steps of ten
                           PressKey(dialog, sliderJpegQuality, VK_RIGHT);
                           Press(dialog, IDCANCEL);
                       },
                       [](HWND dialog) {
                           EXPECT_TRUE(IsUsable(dialog, checkJPEGProgressive));
                           EXPECT_FALSE(IsUsable(dialog, checkPNGInterless));
                           Click(dialog, checkJPEGOptimize);
                           Press(dialog, IDOK);
                       },
                       [](HWND dialog) {
                           EXPECT_TRUE(HasFocus(dialog, optionBMPFileType_1));
                           EXPECT_FALSE(IsUsable(dialog, checkRLE));  // OS/2 has none
                           Click(dialog, optionBMPFileType_0);
                           EXPECT_TRUE(IsUsable(dialog, checkRLE));
                           Press(dialog, IDOK);
                       },
                       [](HWND dialog) {
                           EXPECT_EQ(TextOf(dialog, valuePNGQuality), L"9");
                           PressKey(dialog, sliderPNGQuality, VK_LEFT);
                           Click(dialog, checkPNGInterless);
                           EXPECT_TRUE(IsUsable(dialog, checkPNGExif));
                           Click(dialog, checkPNGExif);
                           Click(dialog, checkPNGKeepDates);
                           Press(dialog, IDOK);
                       }});
    EXPECT_FALSE(edit(kJpegFormat));
    EXPECT_EQ(jpeg.quality, 75);
    EXPECT_TRUE(edit(kJpegFormat));
    EXPECT_TRUE(edit(kBmpFormat));
    EXPECT_TRUE(edit(kPngFormat));
    EXPECT_TRUE(user.IsDone());
    EXPECT_TRUE(jpeg.quality == 70 && jpeg.progressive == 1 && jpeg.optimizedHuffman == 1);
    EXPECT_TRUE(bmp.saveType == 0 && bmp.saveRLE == 1);
    EXPECT_TRUE(png.quality == 8 && png.interlace == 1);
    EXPECT_TRUE(pngExif == 0 && jpegExif == 1 && keepDates == 1 && pngProfile == 1);
}

}  // namespace
}  // namespace tessary::test
