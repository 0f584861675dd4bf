// Deflate streams (RFC 1951) of independent strips, made to be joined.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_compressor;

namespace tessary::dcpng {

// A compressed strip of the rows.
struct DeflatedStrip {
    std::vector<uint8_t> bytes;  // begins and ends with whole bytes
    uint32_t adler = 1;          // Adler-32 of the strip
    size_t size = 0;             // bytes of the strip
};

// Compresses strips, each on its own: what comes out, joined in order, is one deflate stream. One
// for each thread.
//
// Each strip is what libdeflate makes of it, or what zlib's run-length strategy does where that
// makes a sample from the strip's middle shorter; at level 9 both compress the whole strip, and the
// shorter one is taken. Processor time for 24 megapixels of filtered photograph, 32-bit, at level
// 6, and the file's size beside libpng's own (3.0 s):
//   zlib in strips                                        2.2 s   -0.1 %
//   zlib in strips primed with the 32 KB before each      2.3 s   -0.1 %
//   zlib, run-length strategy                             0.6 s   -0.1 % (flat pictures: +117 %)
//   libdeflate, which cannot be primed                    1.2 s   +0.2 % (soft photographs: +4 %)
//   libdeflate or runs, whichever is shorter              1.6 s   -0.1 % (soft photographs: -2 %)
//   libdeflate or runs, by the sample                     1.0 s   -0.1 % (soft photographs: -2 %)
// On flat pictures libdeflate is as fast as zlib, once its end is opened, and 4 to 8 % shorter.
// Single filters for all rows gave files 3 to 35 % longer than the choice for each row.
class StripDeflater {
  public:
    // Level 0 (none) to 9 (smallest). Throws std::bad_alloc.
    explicit StripDeflater(int level);
    StripDeflater(const StripDeflater&) = delete;
    StripDeflater& operator=(const StripDeflater&) = delete;
    ~StripDeflater();

    int Level() const { return level_; }

    // The bytes of `strip` pass through other hands on the way, but are the same in the end. The
    // last strip ends the stream. Throws std::bad_alloc.
    void Deflate(std::span<uint8_t> strip, bool isLast, DeflatedStrip& to);

  private:
    struct FreeCompressor {
        void operator()(libdeflate_compressor* compressor) const;
    };

    // Lets other blocks follow the stream in `bytes`, which unpacks to `strip`.
    void OpenEnd(std::vector<uint8_t>& bytes, std::span<uint8_t> strip);
    // Whether the run-length strategy makes a part of the strip shorter than libdeflate does.
    bool SampleIsShorterInRuns(std::span<uint8_t> strip);
    // What libdeflate makes of the bytes.
    void DeflateMatches(std::span<const uint8_t> bytes, std::vector<uint8_t>& to);
    // What zlib's run-length strategy makes of them; false when `most` bytes do not suffice.
    bool DeflateRuns(std::span<uint8_t> bytes, bool isLast, size_t most, std::vector<uint8_t>& to);

    std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor_;
    z_stream packing_{};           // in runs
    z_stream unpacking_{};         // to look for the last block
    std::vector<uint8_t> second_;  // a second try, or a sample
    int level_;
};

}  // namespace tessary::dcpng
