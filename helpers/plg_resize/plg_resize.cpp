// plg_resize.fplg: makes resized images of the kernel's images. The contract is in
// helpers/kernel/pic_kernel.h.
#include <algorithm>
#include <utility>

#include "helpers/kernel/kernel_library.h"
#include "helpers/kernel/resize.h"

using namespace tessary;
using namespace tessary::kernel;

namespace {

Part PartOf(const ResizeParameters& parameters) {
    const bool named = parameters.size >= kStoredResizeSize &&
                       (parameters.left != 0 || parameters.top != 0 || parameters.partWidth != 0 ||
                        parameters.partHeight != 0);
    if (!named) return {0, 0, parameters.width, parameters.height};
    return {parameters.left, parameters.top, parameters.partWidth, parameters.partHeight};
}

dib::Backdrop BackdropOf(const ResizeParameters& parameters) {
    const bool isBlack = parameters.size >= kStoredResizeSize && parameters.overBlack != 0;
    return isBlack ? dib::Backdrop::kBlack : dib::Backdrop::kWhite;
}

Light LightOf(const ResizeParameters& parameters) {
    return parameters.size >= sizeof(parameters) ? static_cast<Light>(parameters.light)
                                                 : Light::kStored;
}

bool AreValid(const ResizeParameters& parameters) {
    if (parameters.size < kWholeResizeSize || parameters.width <= 0 || parameters.height <= 0 ||
        parameters.filter > static_cast<uint32_t>(ResizeFilter::kCatmullRom) ||
        LightOf(parameters) > Light::kLinear) {
        return false;
    }
    const Part part = PartOf(parameters);
    return part.left >= 0 && part.top >= 0 && part.width > 0 && part.height > 0 &&
           part.width <= parameters.width - part.left &&
           part.height <= parameters.height - part.top;
}

// With the masks of 32 bits, which 24 bits do without.
struct ResizedInfo {
    dib::BitmapInfoHeader header{};
    uint32_t masks[4]{};

    std::span<const uint8_t> Bytes() const {
        const size_t size = header.bitCount == 32 ? sizeof(*this) : sizeof(header);
        return {reinterpret_cast<const uint8_t*>(this), size};
    }
};

ResizedInfo InfoOf(const dib::BitmapInfoHeader& source, const Part& part, uint16_t bits) {
    ResizedInfo info;
    dib::BitmapInfoHeader& header = info.header;
    header.size = dib::kInfoHeaderSize;
    header.width = part.width;
    header.height = part.height;
    header.planes = 1;
    header.bitCount = bits;
    if (bits == 32) {
        header.compression = dib::kCompressionAlphaBitFields;
        std::ranges::copy(dib::kMasksAlpha, info.masks);
    }
    header.xPelsPerMeter = source.xPelsPerMeter;
    header.yPelsPerMeter = source.yPelsPerMeter;
    return info;
}

// An image under construction: destroyed unless it is finished and handed on.
class NewImage {
  public:
    explicit NewImage(const KernelLibrary& kernel) : kernel_(kernel) {}
    NewImage(const NewImage&) = delete;
    NewImage& operator=(const NewImage&) = delete;
    ~NewImage() {
        if (image_ != nullptr) kernel_.destroyImage(image_);
    }

    KernelResult Create(const ResizedInfo& info) {
        return kernel_.createImage(info.Bytes().data(), info.Bytes().size(), &image_);
    }
    std::span<uint8_t> Bits() const {
        const ImageBlocks blocks = kernel_.BlocksOf(image_).value();
        return {static_cast<uint8_t*>(blocks.ownBits), blocks.bitsSize};
    }
    HIMAGE Release() { return std::exchange(image_, nullptr); }

  private:
    const KernelLibrary& kernel_;
    HIMAGE image_ = nullptr;
};

}  // namespace

extern "C" __declspec(dllexport) KernelResult
    __stdcall do_filter(HIMAGE source, const ResizeParameters* parameters, HIMAGE* out) {
    if (out == nullptr) return kKernelBadParameter;
    *out = nullptr;
    if (parameters == nullptr || !AreValid(*parameters)) return kKernelBadParameter;
    return CallWithKernel([&](const KernelLibrary& kernel) {
        const std::optional<dib::DibView> view = kernel.ViewOf(source);
        if (!view) return kKernelBadHandle;
        const Part part = PartOf(*parameters);
        NewImage resized(kernel);
        const Light light = LightOf(*parameters);
        const KernelResult result =
            resized.Create(InfoOf(view->Header(), part, ResizedBits(*view, light)));
        if (result != kKernelOk) return result;
        Resize(*view, parameters->width, parameters->height, part,
               static_cast<ResizeFilter>(parameters->filter), resized.Bits(), BestInstructions(),
               BackdropOf(*parameters), light);
        *out = resized.Release();
        return kKernelOk;
    });
}
