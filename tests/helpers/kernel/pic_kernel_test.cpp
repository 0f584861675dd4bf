#include "helpers/kernel/pic_kernel.h"

#include "tests/helpers/dib/sample_picture.h"
#include "tests/helpers/kernel/reference_resize.h"
#include "tests/support/content_of.h"
#include "tests/support/loaded_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary::kernel {
namespace {

using dib::PixelFormat;
using dib::test::SamplePicture;

constexpr auto kAutomatic = static_cast<uint32_t>(ResizeFilter::kAutomatic);

class PicKernel : public testing::Test {
  protected:
    HIMAGE Attach(const SamplePicture& picture) {
        HIMAGE image = nullptr;
        EXPECT_EQ(attach_(picture.info.data(), picture.info.size(), picture.bits.data(),
                          picture.bits.size(), &image),
                  kKernelOk);
        return image;
    }
    KernelResult Resize(HIMAGE source, ResizeParameters parameters) {
        resized_ = reinterpret_cast<HIMAGE>(~uintptr_t{0});
        return resize_(source, &parameters, &resized_);
    }

    const test::LoadedLibrary kernel_{L"pic_kernel.dll"};
    const test::LoadedLibrary import_{L"bmp_import.iplg"};
    const test::LoadedLibrary filter_{L"plg_resize.fplg"};
    const test::LoadedLibrary output_{L"bmp_export.eplg"};
    GetImageBlocksFunction blocks_ = kernel_[kGetImageBlocksName];
    DestroyImageHandleFunction destroy_ = kernel_[kDestroyImageHandleName];
    AttachMemoryImageFunction attach_ = import_[kAttachMemoryImageName];
    DoFilterFunction resize_ = filter_[kDoFilterName];
    WriteImageFunction write_ = output_[kWriteImageName];
    WriteMemoryImageFunction writeMemory_ = output_[kWriteMemoryImageName];
    HIMAGE resized_ = nullptr;
    test::TemporaryFolder folder_;
    std::wstring target_ = folder_.Path() + L"~temp.bmp";
};

// The road of a picture that the viewer fits into its window.
TEST_F(PicKernel, ResizesIntoABitmapFile) {
    // 54 + 144 * 130 bytes; 47 x 130 pixels; 11811 and 5906 pixels per metre.
    const std::string headers(
        "BM\x56\x49\0\0\0\0\0\0\x36\0\0"
        "\0\x28\0\0\0\x2F\0\0\0\x82\0\0\0\x01\0\x18\0\0\0\0\0"
        "\x20\x49\0\0\x23\x2E\0\0\x12\x17\0\0\0\0\0\0\0\0\0",
        54);
    for (const PixelFormat format : dib::test::kAllFormats) {
        const SamplePicture picture(format, 121, format < PixelFormat::kRgb565 ? 90 : -91);
        const HIMAGE source = Attach(picture);
        ASSERT_EQ(Resize(source, {sizeof(ResizeParameters), 47, 130, kAutomatic}), kKernelOk);
        ASSERT_EQ(write_(resized_, target_.c_str()), kKernelOk);
        EXPECT_EQ(destroy_(resized_), kKernelOk);
        EXPECT_EQ(destroy_(source), kKernelOk);
        const auto file = test::ContentOf<std::vector<uint8_t>>(target_);
        ASSERT_EQ(file.size(), headers.size() + 144 * 130);
        EXPECT_EQ(std::memcmp(file.data(), headers.data(), headers.size()), 0);
        const std::span rows = std::span(file).subspan(headers.size());
        EXPECT_LE(WorstDeviation(picture.View(), 47, 130, rows), kMostDeviation)
            << static_cast<int>(format);
    }
}

TEST_F(PicKernel, AttachesPixelsInPlaceAndKnowsNoImageThatIsGone) {
    SamplePicture picture(PixelFormat::kIndexed8, 30, 20);
    const std::vector<uint8_t> info = picture.info;
    const HIMAGE attached = Attach(picture);
    std::fill(picture.info.begin(), picture.info.end(), uint8_t{0});
    ImageBlocks blocks{};
    EXPECT_EQ(blocks_(attached, &blocks), kKernelBadParameter);
    blocks.size = sizeof(blocks);
    ASSERT_EQ(blocks_(attached, &blocks), kKernelOk);
    EXPECT_EQ(blocks.bits, picture.bits.data());
    EXPECT_EQ(blocks.ownBits, nullptr);
    ASSERT_EQ(blocks.infoSize, info.size());
    EXPECT_EQ(std::memcmp(blocks.info, info.data(), info.size()), 0);

    EXPECT_EQ(destroy_(attached), kKernelOk);
    for (const HIMAGE gone : {attached, HIMAGE{}}) {
        EXPECT_EQ(destroy_(gone), kKernelBadHandle);
        EXPECT_EQ(blocks_(gone, &blocks), kKernelBadHandle);
        EXPECT_EQ(write_(gone, target_.c_str()), kKernelBadHandle);
        void* left[] = {&blocks, &blocks};
        EXPECT_EQ(writeMemory_(gone, &left[0], &left[1]), kKernelBadHandle);
        EXPECT_EQ(left[0], nullptr);
        EXPECT_EQ(left[1], nullptr);
        EXPECT_EQ(Resize(gone, {sizeof(ResizeParameters), 1, 1, kAutomatic}), kKernelBadHandle);
    }
}

TEST_F(PicKernel, RefusesBadParameters) {
    const SamplePicture picture(PixelFormat::kBgr24, 30, 20);
    const HIMAGE image = Attach(picture);
    constexpr uint32_t kSize = sizeof(ResizeParameters);
    constexpr int32_t kHuge = INT32_MAX;
    const std::pair<ResizeParameters, KernelResult> cases[] = {
        {{kSize, 0, 5, kAutomatic}, kKernelBadParameter},
        {{kSize, 5, -5, kAutomatic}, kKernelBadParameter},
        {{kWholeResizeSize - 1, 5, 5, kAutomatic}, kKernelBadParameter},
        {{kSize, 5, 5, kAutomatic, 3, 0, 3, 5}, kKernelBadParameter},
        {{kSize, 5, 5, kAutomatic, 0, 0, 5, 0}, kKernelBadParameter},
        {{kSize, 5, 5, kAutomatic, 0, -1, 5, 5}, kKernelBadParameter},
        {{kSize, 5, 5, kAutomatic, kHuge, 0, kHuge, 5}, kKernelBadParameter},
        {{kSize, 5, 5, 3}, kKernelBadParameter},
        {{kSize, kHuge, 1, kAutomatic}, kKernelTooLarge},
        {{kSize, 1, kHuge, kAutomatic}, kKernelTooLarge},
        {{kSize, kHuge, kHuge, kAutomatic}, kKernelTooLarge},
        {{kSize, 1 << 16, 1 << 15, kAutomatic}, kKernelTooLarge},
    };
    for (const auto& [parameters, result] : cases) {
        EXPECT_EQ(Resize(image, parameters), result);
        EXPECT_EQ(resized_, nullptr);
    }
    EXPECT_EQ(write_(image, folder_.Path().c_str()), kKernelCannotWrite);
    destroy_(image);
}

}  // namespace
}  // namespace tessary::kernel
