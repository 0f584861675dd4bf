#include "helpers/dcpng/strip_deflater.h"

#include <libdeflate.h>

#include <algorithm>
#include <array>
#include <new>
#include <stdexcept>

namespace tessary::dcpng {
namespace {

constexpr int kRawWindowBits = -15;  // 32 KB, and no header of zlib's
constexpr int kMemoryLevel = 8;
constexpr int kBestLevel = 9;
constexpr size_t kSamplePart = 8;  // of a strip
constexpr size_t kLeastSample = 2u << 10;
// What zlib's data_type tells behind a block.
constexpr int kUnusedBits = 7;
constexpr int kLastBlock = 64;
constexpr int kEndOfBlock = 128;

// Behind the three bits of its head, filled up to a whole byte: a stored block without bytes.
constexpr std::array<uint8_t, 4> kEmptyBlock = {0x00, 0x00, 0xFF, 0xFF};
constexpr size_t kBlockHeadBits = 3;

// What shrinks to less than a quarter is full of long matches.
bool IsGrainy(std::span<const uint8_t> deflated, std::span<const uint8_t> bytes) {
    return deflated.size() > bytes.size() / 4;
}

}  // namespace

void StripDeflater::FreeCompressor::operator()(libdeflate_compressor* compressor) const {
    libdeflate_free_compressor(compressor);
}

StripDeflater::StripDeflater(int level)
    : compressor_(libdeflate_alloc_compressor(level)), level_(level) {
    if (compressor_ == nullptr || inflateInit2(&unpacking_, kRawWindowBits) != Z_OK) {
        throw std::bad_alloc();
    }
    if (deflateInit2(&packing_, level, Z_DEFLATED, kRawWindowBits, kMemoryLevel, Z_RLE) != Z_OK) {
        inflateEnd(&unpacking_);
        throw std::bad_alloc();
    }
}

StripDeflater::~StripDeflater() {
    deflateEnd(&packing_);
    inflateEnd(&unpacking_);
}

void StripDeflater::Deflate(std::span<uint8_t> strip, bool isLast, DeflatedStrip& to) {
    to.size = strip.size();
    to.adler = libdeflate_adler32(1, strip.data(), strip.size());
    if (level_ != 0 && level_ != kBestLevel && SampleIsShorterInRuns(strip)) {
        const size_t most = deflateBound(&packing_, strip.size()) + kEmptyBlock.size() + 1;
        DeflateRuns(strip, isLast, most, to.bytes);
        return;
    }
    DeflateMatches(strip, to.bytes);
    if (level_ == kBestLevel && IsGrainy(to.bytes, strip) &&
        DeflateRuns(strip, isLast, to.bytes.size(), second_)) {
        to.bytes.swap(second_);
    } else if (!isLast) {
        OpenEnd(to.bytes, strip);
    }
}

bool StripDeflater::SampleIsShorterInRuns(std::span<uint8_t> strip) {
    const size_t size = std::min(std::max(strip.size() / kSamplePart, kLeastSample), strip.size());
    const std::span<uint8_t> sample = strip.subspan((strip.size() - size) / 2, size);
    DeflateMatches(sample, second_);
    return IsGrainy(second_, sample) && DeflateRuns(sample, true, second_.size(), second_);
}

void StripDeflater::DeflateMatches(std::span<const uint8_t> bytes, std::vector<uint8_t>& to) {
    to.resize(libdeflate_deflate_compress_bound(compressor_.get(), bytes.size()));
    to.resize(libdeflate_deflate_compress(compressor_.get(), bytes.data(), bytes.size(), to.data(),
                                          to.size()));
}

// The last block says in its first bit that it is the last one. libdeflate does not tell where it
// begins, so the stream is unpacked once, over the strip it came from, with a stop behind each
// block.
void StripDeflater::OpenEnd(std::vector<uint8_t>& bytes, std::span<uint8_t> strip) {
    inflateReset(&unpacking_);
    unpacking_.next_in = bytes.data();
    unpacking_.avail_in = static_cast<uInt>(bytes.size());
    unpacking_.next_out = strip.data();
    unpacking_.avail_out = static_cast<uInt>(strip.size());
    size_t lastBlock = 0;  // both in bits
    size_t end = 0;
    while (end == 0) {
        if (inflate(&unpacking_, Z_BLOCK) != Z_OK) throw std::logic_error("deflate stream");
        const int state = unpacking_.data_type;
        if ((state & kEndOfBlock) == 0) continue;
        const size_t at = static_cast<size_t>(unpacking_.next_in - bytes.data()) * 8 -
                          static_cast<size_t>(state & kUnusedBits);
        ((state & kLastBlock) != 0 ? end : lastBlock) = at;
    }
    bytes[lastBlock / 8] &= static_cast<uint8_t>(~(1u << lastBlock % 8));
    bytes.resize((end + kBlockHeadBits + 7) / 8);  // the bits behind the end are 0
    bytes.insert(bytes.end(), kEmptyBlock.begin(), kEmptyBlock.end());
}

bool StripDeflater::DeflateRuns(std::span<uint8_t> bytes, bool isLast, size_t most,
                                std::vector<uint8_t>& to) {
    to.resize(most);
    deflateReset(&packing_);
    packing_.next_in = bytes.data();
    packing_.avail_in = static_cast<uInt>(bytes.size());
    packing_.next_out = to.data();
    packing_.avail_out = static_cast<uInt>(most);
    deflate(&packing_, isLast ? Z_FINISH : Z_SYNC_FLUSH);
    // Room that is left tells that everything is out.
    to.resize(most - packing_.avail_out);
    return packing_.avail_out != 0;
}

}  // namespace tessary::dcpng
