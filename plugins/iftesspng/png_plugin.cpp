// iftesspng.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftesspng/png_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.png;*.apng", L"PNG形式", "PNG"},
    };
    static constexpr PluginIdentity kIdentity{"iftesspng " TESSARY_PLUGIN_VERSION " - PNG (libpng)",
                                              kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const png::PngDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
