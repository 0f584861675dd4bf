// The files that a host points at: by file name or by address, and the header blocks of
// IsSupported.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "helpers/dib/byte_source.h"
#include "helpers/susiectl/susie_interface.h"
#include "plugins/common/result.h"

namespace tessary::spi {

// Opens what `source`, `length` and `flag` of a Susie call mean: with 0 in the low three bits of
// `flag` the file of that ANSI name from offset `length` on (behind a MacBinary header, say), with
// 1 the `length` bytes at that address, which stay the host's. Fails with kReadError (no such
// file), kBrokenData (negative or zero length, offset behind the end) or kInternalError.
codec::Result OpenSource(const char* source, LONG_PTR length, uint32_t flag,
                         std::unique_ptr<dib::ByteSource>& bytes);

// Room for the bytes of a header that the host does not hand over itself.
using HeaderBlock = std::array<uint8_t, susie::kHeaderBlockSize>;

// The first bytes of the file that a host asks about with IsSupported. `header` is the address of
// those bytes (2048 of them, by the interface), or an open file handle, which is read at its
// position and put back there, or nothing; then the file is looked up by its name. What is read is
// put into `block`. Empty when there is nothing to read.
std::span<const uint8_t> HeaderBytes(const char* fileName, const void* header, HeaderBlock& block);

}  // namespace tessary::spi
