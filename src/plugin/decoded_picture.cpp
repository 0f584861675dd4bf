#include "plugin/decoded_picture.h"

#include <cstring>
#include <span>

#include "helpers/dib/check_dib.h"

namespace tessary {
namespace {

std::span<const uint8_t> BytesOf(const BlockLock& block) {
    return {static_cast<const uint8_t*>(block.Address()), block.Size()};
}

// A new movable block of `size` bytes, filled by `fill`; empty when there is no memory for it.
template <typename Fill>
OwnedBlock FilledBlock(size_t size, Fill fill) {
    OwnedBlock block(LocalAlloc(LMEM_MOVEABLE, size));
    const BlockLock lock(block.Get());
    if (lock) fill(std::span(static_cast<uint8_t*>(lock.Address()), size));
    return lock ? std::move(block) : OwnedBlock();
}

// The blocks that have to replace those of the pair; false when the pair is no picture.
bool MakeReplacements(const PicturePair& pair, OwnedBlock& newInfo, OwnedBlock& newBits) {
    const BlockLock info(pair.info);
    const BlockLock bits(pair.bits);
    if (!info || !bits) return false;
    const dib::CheckedDib checked = dib::CheckDib(BytesOf(info), BytesOf(bits));
    if (checked.Error() != dib::DibError::kNone) return false;
    if (!checked.KeepsInfo()) {
        newInfo = FilledBlock(checked.Info().size(), [&](std::span<uint8_t> target) {
            std::memcpy(target.data(), checked.Info().data(), target.size());
        });
        if (!newInfo) return false;
    }
    if (!checked.KeepsBits()) {
        newBits = FilledBlock(checked.BitsSize(),
                              [&](std::span<uint8_t> target) { checked.WriteBits(target); });
        if (!newBits) return false;
    }
    return true;
}

}  // namespace

OwnedPicture PlainPicture(PicturePair fromPlugin) {
    // One block given out twice must not be freed twice.
    if (fromPlugin.bits == fromPlugin.info) fromPlugin.bits = nullptr;
    OwnedBlock info(fromPlugin.info);
    OwnedBlock bits(fromPlugin.bits);
    OwnedBlock newInfo;
    OwnedBlock newBits;
    if (!MakeReplacements(fromPlugin, newInfo, newBits)) return {};
    if (newInfo) info = std::move(newInfo);
    if (newBits) bits = std::move(newBits);
    return OwnedPicture({info.Release(), bits.Release()});
}

}  // namespace tessary
