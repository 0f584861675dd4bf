// What a bundled picture plug-in supplies to picture_exports.cpp: who it is, and its codec.
#pragma once

#include "plugins/common/bundled_plugin.h"
#include "plugins/common/picture_codec.h"

namespace tessary::spi {

// Defined once in each picture plug-in. The answer lives as long as the module.
const codec::PictureCodec& Codec();

}  // namespace tessary::spi
