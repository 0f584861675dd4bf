// The header of DDS files (DDS_HEADER and DDS_HEADER_DXT10 of the DirectX documents).
#pragma once

#include "plugins/iftesswic/inspection.h"
#include "plugins/iftesswic/patched_source.h"

namespace tessary::wic {

// Lets through what the system's decoder is known to do right: it shows other kinds as a white
// area. In `patched`, which is the same file, there is one picture only, the first and largest, and
// its values count as they stand, whether they are sRGB or not.
Inspection InspectDds(dib::ByteSource& file, PatchedSource& patched);

}  // namespace tessary::wic
