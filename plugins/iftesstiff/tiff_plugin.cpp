// iftesstiff.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftesstiff/tiff_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.tif;*.tiff;*.btf;*.tf8", L"TIFF形式", "TIFF"},
    };
    static constexpr PluginIdentity kIdentity{
        "iftesstiff " TESSARY_PLUGIN_VERSION " - TIFF (libtiff)", kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const tiff::TiffDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
