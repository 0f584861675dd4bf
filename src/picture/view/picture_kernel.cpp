#include "picture/view/picture_kernel.h"

#include <optional>
#include <string>

#include "app/base/cloud_folder.h"
#include "app/base/handles.h"
#include "app/base/helper_function.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/shared_mutex.h"
#include "app/settings/modValue.h"
#include "helpers/kernel/pic_kernel.h"
#include "picture/bitmap_file.h"

namespace tessary {
namespace {

constexpr wchar_t kTemporaryName[] = L"~temp.bmp";

// The kernel's entries; null where a library is missing.
struct Kernel {
    kernel::AttachMemoryImageFunction attachMemoryImage =
        HelperFunction<kernel::AttachMemoryImageFunction>(L"bmp_import.iplg",
                                                          kernel::kAttachMemoryImageName);
    kernel::DoFilterFunction doFilter =
        HelperFunction<kernel::DoFilterFunction>(L"plg_resize.fplg", kernel::kDoFilterName);
    kernel::WriteImageFunction writeImage =
        HelperFunction<kernel::WriteImageFunction>(L"bmp_export.eplg", kernel::kWriteImageName);
    kernel::WriteMemoryImageFunction writeMemoryImage =  // may be missing
        HelperFunction<kernel::WriteMemoryImageFunction>(L"bmp_export.eplg",
                                                         kernel::kWriteMemoryImageName);
    kernel::DestroyImageHandleFunction destroyImage =
        HelperFunction<kernel::DestroyImageHandleFunction>(L"pic_kernel.dll",
                                                           kernel::kDestroyImageHandleName);

    bool IsComplete() const { return attachMemoryImage && doFilter && writeImage && destroyImage; }
};

// Owns an image of the kernel.
class KernelImage {
  public:
    explicit KernelImage(const Kernel& kernel) : kernel_(kernel) {}
    KernelImage(const KernelImage&) = delete;
    KernelImage& operator=(const KernelImage&) = delete;
    ~KernelImage() {
        if (image_ != nullptr) kernel_.destroyImage(image_);
    }

    kernel::HIMAGE Get() const { return image_; }
    kernel::HIMAGE* Receive() { return &image_; }

  private:
    const Kernel& kernel_;
    kernel::HIMAGE image_ = nullptr;
};

// Keeps a second copy of the program from writing the temporary file between our writing and
// reading it.
class TemporaryFileTurn {
  public:
    TemporaryFileTurn() : mutex_(SharedMutex(LR"(Global\Tessary_Viewer_temp_bmp)")) {
        if (mutex_) held_ = WaitForSingleObject(mutex_.Get(), kPatience) != WAIT_TIMEOUT;
    }
    TemporaryFileTurn(const TemporaryFileTurn&) = delete;
    TemporaryFileTurn& operator=(const TemporaryFileTurn&) = delete;
    ~TemporaryFileTurn() {
        if (held_) ReleaseMutex(mutex_.Get());
    }

  private:
    static constexpr DWORD kPatience = 5000;  // milliseconds; a hung copy must not hang this one

    UniqueMutex mutex_;
    bool held_ = false;
};

// Takes the image over the temporary file in that folder.
Picture ThroughFile(const Kernel& kernel, kernel::HIMAGE image, const std::wstring& folder) {
    const std::wstring path = folder + kTemporaryName;
    if (kernel.writeImage(image, path.c_str()) != kernel::kKernelOk) return {};
    // Nobody is to save it on a disk or send it anywhere.
    SetFileAttributesW(ExtendedPath(path).c_str(), FILE_ATTRIBUTE_TEMPORARY);
    Picture picture;
    ReadBitmapFile(path, picture);
    DeleteFileW(ExtendedPath(path).c_str());
    return picture;
}

// A program folder that cannot be written is no reason to show the picture in the wrong size.
Picture ThroughFile(const Kernel& kernel, kernel::HIMAGE image) {
    const TemporaryFileTurn turn;
    std::optional<bool>& avoidsProgramFolder = Values().avoidsProgramFolder;
    if (!avoidsProgramFolder) avoidsProgramFolder = IsInCloud(AppFolder());
    if (!*avoidsProgramFolder) {
        Picture result = ThroughFile(kernel, image, AppFolder());
        if (result) return result;
        avoidsProgramFolder = true;
    }
    return ThroughFile(kernel, image, TemporaryFolder());
}

Picture ThroughMemory(const Kernel& kernel, kernel::HIMAGE image) {
    PicturePair pair;
    if (kernel.writeMemoryImage(image, &pair.info, &pair.bits) != kernel::kKernelOk) return {};
    return Picture::FromPair(pair);
}

Picture Resize(const Picture& picture, const kernel::ResizeParameters& parameters,
               Handover handover) {
    const Kernel kernel;
    const bool isInMemory = handover != Handover::kFile && kernel.writeMemoryImage != nullptr;
    if (!kernel.IsComplete() || (handover == Handover::kNoFile && !isInMemory)) return {};
    KernelImage source(kernel);
    KernelImage resized(kernel);
    if (kernel.attachMemoryImage(picture.Info().data(), picture.Info().size(),
                                 picture.Bits().data(), picture.Bits().size(),
                                 source.Receive()) != kernel::kKernelOk) {
        return {};
    }
    if (kernel.doFilter(source.Get(), &parameters, resized.Receive()) != kernel::kKernelOk) {
        return {};
    }
    return isInMemory ? ThroughMemory(kernel, resized.Get()) : ThroughFile(kernel, resized.Get());
}

}  // namespace

Picture ResizePicture(const Picture& picture, int width, int height, Handover handover,
                      kernel::Light light) {
    const bool isStored = light == kernel::Light::kStored;
    return Resize(
        picture,
        {.size = isStored ? kernel::kWholeResizeSize : uint32_t{sizeof(kernel::ResizeParameters)},
         .width = width,
         .height = height,
         .filter = 0,
         .light = static_cast<uint32_t>(light)},
        handover);
}

bool HandsOverByFile() {
    const Kernel kernel;
    return kernel.IsComplete() && kernel.writeMemoryImage == nullptr;
}

Picture ResizePicturePart(const Picture& picture, SIZE size, const RECT& part,
                          dib::Backdrop backdrop, kernel::Light light) {
    return Resize(picture,
                  {.size = sizeof(kernel::ResizeParameters),
                   .width = size.cx,
                   .height = size.cy,
                   .filter = 0,
                   .left = part.left,
                   .top = part.top,
                   .partWidth = part.right - part.left,
                   .partHeight = part.bottom - part.top,
                   .overBlack = backdrop == dib::Backdrop::kBlack ? 1u : 0u,
                   .light = static_cast<uint32_t>(light)},
                  Handover::kNoFile);
}

kernel::Light ChosenLight() {
    return Values().general.linearLight != 0 ? kernel::Light::kLinear : kernel::Light::kStored;
}

}  // namespace tessary
