#include "helpers/pic_kernel/image_table.h"

#include <cstring>
#include <limits>

#include "helpers/dib/dib_view.h"

namespace tessary::kernel {
namespace {

constexpr uint64_t kMostBytes = std::numeric_limits<int32_t>::max();

}  // namespace

KernelResult ImageTable::Create(std::span<const uint8_t> info, HIMAGE& out) {
    dib::BitmapInfoHeader header;
    if (info.size() < sizeof(header)) return kKernelBadPicture;
    std::memcpy(&header, info.data(), sizeof(header));
    if (header.width <= 0) return kKernelBadPicture;
    const int64_t height = header.height < 0 ? -int64_t{header.height} : header.height;
    const uint64_t stride = dib::RowStride(static_cast<uint64_t>(header.width), header.bitCount);
    if (stride > kMostBytes || stride * static_cast<uint64_t>(height) > kMostBytes) {
        return kKernelTooLarge;
    }
    Image image;
    image.ownBits.resize(static_cast<size_t>(stride * static_cast<uint64_t>(height)));
    image.bits = image.ownBits;
    if (!dib::DibView::Of(info, image.bits)) return kKernelBadPicture;
    image.info.assign(info.begin(), info.end());
    out = Add(std::move(image));
    return kKernelOk;
}

KernelResult ImageTable::Attach(std::span<const uint8_t> info, std::span<const uint8_t> bits,
                                HIMAGE& out) {
    if (!dib::DibView::Of(info, bits)) return kKernelBadPicture;
    Image image;
    image.info.assign(info.begin(), info.end());
    image.bits = bits;
    out = Add(std::move(image));
    return kKernelOk;
}

HIMAGE ImageTable::Add(Image image) {
    const std::scoped_lock lock(mutex_);
    const auto handle = reinterpret_cast<HIMAGE>(++lastNumber_);
    images_.emplace(handle, std::move(image));
    return handle;
}

KernelResult ImageTable::Destroy(HIMAGE image) {
    const std::scoped_lock lock(mutex_);
    return images_.erase(image) == 1 ? kKernelOk : kKernelBadHandle;
}

KernelResult ImageTable::Blocks(HIMAGE image, ImageBlocks& blocks) {
    const std::scoped_lock lock(mutex_);
    const auto found = images_.find(image);
    if (found == images_.end()) return kKernelBadHandle;
    Image& entry = found->second;
    blocks.info = entry.info.data();
    blocks.infoSize = entry.info.size();
    blocks.bits = entry.bits.data();
    blocks.bitsSize = entry.bits.size();
    blocks.ownBits = entry.ownBits.empty() ? nullptr : entry.ownBits.data();
    return kKernelOk;
}

}  // namespace tessary::kernel
