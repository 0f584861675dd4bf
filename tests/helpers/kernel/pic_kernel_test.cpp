#include <algorithm>
#include <cmath>
#include <fstream>

#include "helpers/kernel/pic_kernel.h"
#include "tests/helpers/kernel/noise_picture.h"
#include "tests/helpers/kernel/reference_resize.h"
#include "tests/support/content_of.h"
#include "tests/support/loaded_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary::kernel {
namespace {

constexpr auto kAutomatic = static_cast<uint32_t>(ResizeFilter::kAutomatic);

// The kernel's four files.
struct LoadedKernel {
    test::LoadedLibrary kernel{L"pic_kernel.dll"};
    test::LoadedLibrary import{L"bmp_import.iplg"};
    test::LoadedLibrary filter{L"plg_resize.fplg"};
    test::LoadedLibrary output{L"bmp_export.eplg"};
    CreateImageFunction create = kernel[kCreateImageName];
    GetImageBlocksFunction blocks = kernel[kGetImageBlocksName];
    DestroyImageHandleFunction destroy = kernel[kDestroyImageHandleName];
    AttachMemoryImageFunction attach = import[kAttachMemoryImageName];
    DoFilterFunction resize = filter[kDoFilterName];
    WriteImageFunction write = output[kWriteImageName];
    WriteMemoryImageFunction writeMemory = output[kWriteMemoryImageName];
};

class PicKernel : public testing::Test {
  protected:
    HIMAGE Attach(const NoisePicture& picture) {
        HIMAGE image = nullptr;
        EXPECT_EQ(kernel_.attach(picture.info.data(), picture.info.size(), picture.bits.data(),
                                 picture.bits.size(), &image),
                  kKernelOk);
        return image;
    }
    KernelResult Resize(HIMAGE source, ResizeParameters parameters) {
        resized_ = reinterpret_cast<HIMAGE>(~uintptr_t{0});
        return kernel_.resize(source, &parameters, &resized_);
    }
    static std::vector<uint8_t> Content(const std::wstring& fileName) {
        return test::ContentOf<std::vector<uint8_t>>(fileName);
    }
    size_t FilesInFolder() const {
        const std::filesystem::directory_iterator files(folder_.Path());
        return static_cast<size_t>(std::distance(begin(files), end(files)));
    }

    LoadedKernel kernel_;
    HIMAGE resized_ = nullptr;
    test::TemporaryFolder folder_;
};

// The road of a picture that the viewer fits into its window.
TEST_F(PicKernel, ResizesEveryDepthIntoABitmapFile) {
    const std::wstring fileName = folder_.Path() + L"~temp.bmp";
    for (const uint16_t depth : {1, 4, 8, 16, 24, 32}) {
        for (const int32_t height : {90, -91}) {
            const NoisePicture picture(121, height, depth);
            const HIMAGE source = Attach(picture);
            ASSERT_EQ(Resize(source, {sizeof(ResizeParameters), 47, 130, kAutomatic}), kKernelOk);
            ASSERT_EQ(kernel_.write(resized_, fileName.c_str()), kKernelOk);
            EXPECT_EQ(kernel_.destroy(resized_), kKernelOk);
            EXPECT_EQ(kernel_.destroy(source), kKernelOk);

            const std::vector<uint8_t> file = Content(fileName);
            constexpr size_t kStride = 144;
            // 54 + 144 * 130 bytes; 47 x 130 pixels; 2835 and 3937 pixels per metre.
            constexpr char kHeaders[] =
                "BM\x56\x49\0\0\0\0\0\0\x36\0\0"
                "\0\x28\0\0\0\x2F\0\0\0\x82\0\0\0\x01\0\x18\0\0\0\0\0"
                "\x20\x49\0\0\x13\x0B\0\0\x61\x0F\0\0\0\0\0\0\0\0\0";
            constexpr size_t kHeaderBytes = 54;
            static_assert(sizeof(kHeaders) == kHeaderBytes);
            ASSERT_EQ(file.size(), kHeaderBytes + kStride * 130);
            EXPECT_EQ(std::memcmp(file.data(), kHeaders, kHeaderBytes), 0);
            const std::vector<double> reference = ReferenceResize(picture.View(), 47, 130);
            double worst = 0;
            for (size_t y = 0; y < 130; ++y) {
                for (size_t i = 0; i < kStride; ++i) {
                    const double wanted = i < 141 ? reference[y * 141 + i] : 0;  // padding is 0
                    const double is = file[kHeaderBytes + (129 - y) * kStride + i];
                    worst = std::max(worst, std::fabs(is - std::clamp(wanted, 0.0, 255.0)));
                }
            }
            EXPECT_LE(worst, 0.52) << depth << " bits, height " << height;
        }
    }
    EXPECT_EQ(FilesInFolder(), 1u);
}

TEST_F(PicKernel, AttachesPixelsInPlaceAndOwnsCreatedOnes) {
    NoisePicture picture(30, 20, 8);
    const std::vector<uint8_t> info = picture.info;
    const HIMAGE attached = Attach(picture);
    std::fill(picture.info.begin(), picture.info.end(), uint8_t{0});
    ImageBlocks blocks{};
    EXPECT_EQ(kernel_.blocks(attached, &blocks), kKernelBadParameter);
    blocks.size = sizeof(blocks);
    ASSERT_EQ(kernel_.blocks(attached, &blocks), kKernelOk);
    EXPECT_EQ(blocks.bits, picture.bits.data());
    EXPECT_EQ(blocks.ownBits, nullptr);
    ASSERT_EQ(blocks.infoSize, info.size());
    EXPECT_EQ(std::memcmp(blocks.info, info.data(), info.size()), 0);

    HIMAGE created = nullptr;
    ASSERT_EQ(kernel_.create(info.data(), info.size(), &created), kKernelOk);
    ASSERT_EQ(kernel_.blocks(created, &blocks), kKernelOk);
    EXPECT_EQ(blocks.ownBits, blocks.bits);
    EXPECT_EQ(blocks.bitsSize, picture.bits.size());

    EXPECT_EQ(kernel_.destroy(attached), kKernelOk);
    EXPECT_EQ(kernel_.destroy(created), kKernelOk);
    for (const HIMAGE gone : {attached, created, HIMAGE{}}) {
        EXPECT_EQ(kernel_.destroy(gone), kKernelBadHandle);
        EXPECT_EQ(kernel_.blocks(gone, &blocks), kKernelBadHandle);
        EXPECT_EQ(kernel_.write(gone, (folder_.Path() + L"x.bmp").c_str()), kKernelBadHandle);
        void* left[] = {&blocks, &blocks};
        EXPECT_EQ(kernel_.writeMemory(gone, &left[0], &left[1]), kKernelBadHandle);
        EXPECT_EQ(left[0], nullptr);
        EXPECT_EQ(left[1], nullptr);
        EXPECT_EQ(Resize(gone, {sizeof(ResizeParameters), 1, 1, kAutomatic}), kKernelBadHandle);
    }
}

TEST_F(PicKernel, RefusesBadParameters) {
    const NoisePicture picture(30, 20, 24);
    const HIMAGE image = Attach(picture);
    constexpr uint32_t kSize = sizeof(ResizeParameters);
    constexpr int32_t kHuge = INT32_MAX;
    const std::pair<ResizeParameters, KernelResult> cases[] = {
        {{kSize, 0, 5, kAutomatic}, kKernelBadParameter},
        {{kSize, 5, -5, kAutomatic}, kKernelBadParameter},
        {{kSize - 1, 5, 5, kAutomatic}, kKernelBadParameter},
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
    EXPECT_EQ(kernel_.resize(image, nullptr, &resized_), kKernelBadParameter);
    EXPECT_EQ(kernel_.resize(image, &cases[0].first, nullptr), kKernelBadParameter);
    EXPECT_EQ(kernel_.write(image, nullptr), kKernelBadParameter);
    void* block = nullptr;
    EXPECT_EQ(kernel_.writeMemory(image, &block, nullptr), kKernelBadParameter);
    EXPECT_EQ(kernel_.writeMemory(image, nullptr, &block), kKernelBadParameter);

    const uint8_t* info = picture.info.data();
    const uint8_t* bits = picture.bits.data();
    HIMAGE out = image;
    EXPECT_EQ(kernel_.attach(info, 40, bits, picture.bits.size() - 1, &out), kKernelBadPicture);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(kernel_.attach(info, 39, bits, picture.bits.size(), &out), kKernelBadPicture);
    EXPECT_EQ(kernel_.attach(nullptr, 40, bits, picture.bits.size(), &out), kKernelBadParameter);
    EXPECT_EQ(kernel_.attach(info, 40, nullptr, picture.bits.size(), &out), kKernelBadParameter);
    EXPECT_EQ(kernel_.attach(info, 40, bits, picture.bits.size(), nullptr), kKernelBadParameter);
    EXPECT_EQ(kernel_.create(info, 39, &out), kKernelBadPicture);
    kernel_.destroy(image);
}

TEST_F(PicKernel, ReplacesAFileWholeOrNotAtAll) {
    const NoisePicture picture(30, 20, 24);
    const HIMAGE image = Attach(picture);
    const std::wstring target = folder_.Write(L"old.bmp", std::string(100000, 'x'));
    {
        const std::ifstream inUse{std::filesystem::path(target)};
        EXPECT_EQ(kernel_.write(image, target.c_str()), kKernelCannotWrite);
        EXPECT_EQ(Content(target).size(), 100000u);
    }
    EXPECT_EQ(kernel_.write(image, target.c_str()), kKernelOk);
    EXPECT_EQ(Content(target).size(), 54 + picture.bits.size());
    EXPECT_EQ(kernel_.write(image, folder_.Path().c_str()), kKernelCannotWrite);
    EXPECT_EQ(kernel_.write(image, (folder_.Path() + L"none\\x.bmp").c_str()), kKernelCannotWrite);
    EXPECT_EQ(kernel_.write(image, L""), kKernelCannotWrite);
    EXPECT_EQ(FilesInFolder(), 1u);
    kernel_.destroy(image);
}

TEST(PicKernelAlone, TellsThatItsLibraryIsNotLoaded) {
    const test::LoadedLibrary import(L"bmp_import.iplg");
    const AttachMemoryImageFunction attach = import[kAttachMemoryImageName];
    const NoisePicture picture(3, 2, 24);
    HIMAGE image = nullptr;
    EXPECT_EQ(attach(picture.info.data(), picture.info.size(), picture.bits.data(),
                     picture.bits.size(), &image),
              kKernelNotLoaded);
}

}  // namespace
}  // namespace tessary::kernel
