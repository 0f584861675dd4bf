// The dialog that edits how files are saved.
#include "ui/dialogs/frmSaveOption.h"

#include <gtest/gtest.h>

#include <string>

#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"

namespace tessary::test {
namespace {

TEST(SaveOptionTest, QualityGoesInStepsOfTen) {
    frmSaveOption form;
    saving::JpegSaveOptions options{.quality = 75, .progressive = 1, .optimizedHuffman = 0};
    DrivenDialog user({[](HWND dialog) {
                           EXPECT_EQ(TextOf(dialog, valueJpegQuality), L"70");
                           EXPECT_TRUE(HasFocus(dialog, sliderJpegQuality));
                           PressKey(dialog, sliderJpegQuality, VK_RIGHT);
                           EXPECT_EQ(TextOf(dialog, valueJpegQuality), L"80");
                           Press(dialog, IDCANCEL);
                       },
                       [](HWND dialog) {
                           EXPECT_TRUE(IsUsable(dialog, checkJPEGProgressive));
                           EXPECT_FALSE(IsUsable(dialog, checkPNGInterless));
                           EXPECT_FALSE(IsUsable(dialog, optionBMPFileType_0));
                           Click(dialog, checkJPEGOptimize);
                           Press(dialog, IDOK);
                       }});
    EXPECT_FALSE(form.EditJPEG(nullptr, options));
    EXPECT_EQ(options.quality, 75);
    EXPECT_TRUE(form.EditJPEG(nullptr, options));
    EXPECT_EQ(options.quality, 70);
    EXPECT_EQ(options.progressive, 1);
    EXPECT_EQ(options.optimizedHuffman, 1);
    EXPECT_TRUE(user.IsDone());
}

TEST(SaveOptionTest, OtherFormatsHaveTheirOwnPanels) {
    frmSaveOption form;
    saving::BmpSaveOptions bmp{.saveType = 1, .saveRLE = 1};
    saving::PngSaveOptions png{.quality = 99, .interlace = 0};
    DrivenDialog user({[](HWND dialog) {
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
                           Press(dialog, IDOK);
                       }});
    EXPECT_TRUE(form.EditBMP(nullptr, bmp));
    EXPECT_EQ(bmp.saveType, 0);
    EXPECT_EQ(bmp.saveRLE, 1);
    EXPECT_TRUE(form.EditPNG(nullptr, png));
    EXPECT_EQ(png.quality, 8);
    EXPECT_EQ(png.interlace, 1);
    EXPECT_TRUE(user.IsDone());
}

}  // namespace
}  // namespace tessary::test
