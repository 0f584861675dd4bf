// A ByteSource as the IStream that the system's decoders read from.
#pragma once

#include "helpers/dib/byte_source.h"
#include "plugins/iftesswic/com.h"

namespace tessary::wic {

// A read-only stream at position 0. The source outlives every reference to it.
ComPtr<IStream> MakeStream(dib::ByteSource& source);

}  // namespace tessary::wic
