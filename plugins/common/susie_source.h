// The pictures that a host points at: by file name or by address, and the header blocks of
// IsSupported.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>

#include "plugins/common/picture_codec.h"

namespace tessary::spi {

// Opens what `source`, `length` and `flag` of a Susie call mean: with 0 in the low three bits of
// `flag` the file of that ANSI name from offset `length` on (behind a MacBinary header, say), with
// 1 the `length` bytes at that address, which stay the host's. Fails with kReadError (no such
// file), kBrokenData (negative or zero length, offset behind the end) or kInternalError.
codec::Result OpenSource(const char* source, LONG_PTR length, uint32_t flag,
                         std::unique_ptr<dib::ByteSource>& bytes);

// Whether `codec` takes the file whose header a host passes to IsSupported: the address of its
// first bytes (2048 of them, by the interface), or an open file handle, which is read at its
// position and put back there, or nothing; then the file is looked up by its name.
bool IsSupportedHeader(const codec::PictureCodec& codec, const char* fileName, const void* header);

}  // namespace tessary::spi
