#include "plugin/decoded_picture.h"

#include <cstring>

#include "helpers/dib/check_dib.h"

namespace tessary {
namespace {

// The blocks that have to replace those of the pair; false when the pair is no picture.
bool MakeReplacements(const PicturePair& pair, OwnedBlock& newInfo, OwnedBlock& newBits) {
    const BlockLock info(pair.info);
    const BlockLock bits(pair.bits);
    if (!info || !bits) return false;
    const dib::CheckedDib checked = dib::CheckDib(info.Bytes(), bits.Bytes());
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
