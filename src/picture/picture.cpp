#include "picture/picture.h"

#include <cstring>
#include <utility>

#include "helpers/color/color_profile.h"
#include "helpers/dib/check_dib.h"
#include "helpers/dib/embedded_profile.h"

namespace tessary {
namespace {

using Bytes = std::span<const uint8_t>;

// A block that stays locked as long as it is here.
class LockedBlock {
  public:
    explicit LockedBlock(OwnedBlock block)
        : block_(std::move(block)), lock_(std::in_place, block_.Get()) {}

    std::span<uint8_t> Content() const {
        return {static_cast<uint8_t*>(lock_->Address()), lock_->Size()};
    }
    bool IsThere() const {
        const BlockLock again(block_.Get());
        return again.Address() == lock_->Address() && again.Size() == lock_->Size();
    }
    // By another one, if it is one.
    void Replace(OwnedBlock other) {
        if (!other) return;
        lock_.reset();
        block_ = std::move(other);
        lock_.emplace(block_.Get());
    }
    HLOCAL Release() {
        lock_.reset();
        return block_.Release();
    }

  private:
    OwnedBlock block_;
    std::optional<BlockLock> lock_;
};

class PairMemory final : public PictureMemory {
  public:
    PairMemory(OwnedBlock info, OwnedBlock bits) : info(std::move(info)), bits(std::move(bits)) {}

    Bytes Info() const override { return info.Content(); }
    Bytes Bits() const override { return bits.Content(); }
    bool IsThere() const override { return info.IsThere() && bits.IsThere(); }
    PicturePair GivePair() override { return {info.Release(), bits.Release()}; }

    LockedBlock info;
    LockedBlock bits;
};

OwnedBlock CopyOf(Bytes bytes) {
    return FilledBlock(bytes.size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes.data(), bytes.size());
    });
}

// The blocks that have to replace those of a pair that is not plain, of which one may do; false
// when it is no picture.
bool MakeReplacements(Bytes info, Bytes bits, OwnedBlock& newInfo, OwnedBlock& newBits) {
    const dib::CheckedDib checked = dib::CheckDib(info, bits);
    if (checked.Error() != dib::DibError::kNone) return false;
    if (!checked.KeepsInfo()) {
        newInfo = CopyOf(checked.Info());
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

Picture::Picture(std::unique_ptr<PictureMemory> memory) : memory_(std::move(memory)) {
    if (memory_) view_ = dib::DibView::Of(memory_->Info(), memory_->Bits());
    if (!view_) memory_.reset();
}

Picture Picture::FromPair(PicturePair pair) {
    // One block given out twice must not be freed twice.
    if (pair.bits == pair.info) pair.bits = nullptr;
    OwnedBlock info(pair.info);
    OwnedBlock bits(pair.bits);
    if (!info || !bits) return {};
    auto memory = std::make_unique<PairMemory>(std::move(info), std::move(bits));
    const Bytes embedded = dib::EmbeddedProfile(memory->Info());
    const std::vector<uint8_t> profile(embedded.begin(), embedded.end());
    OwnedBlock newInfo;
    OwnedBlock newBits;
    if (!MakeReplacements(memory->Info(), memory->Bits(), newInfo, newBits)) return {};
    memory->info.Replace(std::move(newInfo));
    memory->bits.Replace(std::move(newBits));
    Picture picture(std::move(memory));
    picture.SetProfile(profile);
    return picture;
}

void Picture::SetProfile(Bytes icc) {
    const bool isKept = !icc.empty() && icc.size() <= color::kLargestProfile;
    profile_ =
        isKept ? std::make_shared<const std::vector<uint8_t>>(icc.begin(), icc.end()) : nullptr;
}

PicturePair Picture::ReleasePair() {
    if (!memory_) return {};
    PicturePair pair;
    if (memory_.use_count() == 1) pair = memory_->GivePair();
    if (pair.info == nullptr) {
        OwnedBlock info = CopyOf(memory_->Info());
        OwnedBlock bits = CopyOf(memory_->Bits());
        if (info && bits) pair = {info.Release(), bits.Release()};
    }
    *this = {};
    return pair;
}

Picture Picture::Unfilled(Bytes info, std::span<uint8_t>& rows) {
    dib::BitmapInfoHeader header;
    if (info.size() < sizeof(header)) return {};
    std::memcpy(&header, info.data(), sizeof(header));
    if (dib::BitsBlockSize(header) > dib::kMaxBitsSize) return {};
    const auto size = static_cast<size_t>(dib::BitsBlockSize(header));
    auto memory =
        std::make_unique<PairMemory>(CopyOf(info), OwnedBlock(LocalAlloc(LMEM_MOVEABLE, size)));
    const std::span<uint8_t> room = memory->bits.Content();
    Picture picture(std::move(memory));
    if (picture) rows = room.first(size);
    return picture;
}

}  // namespace tessary
