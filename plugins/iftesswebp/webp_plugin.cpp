// iftesswebp.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftesswebp/webp_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.webp", L"WebP形式", "WebP"},
    };
    static constexpr PluginIdentity kIdentity{
        "iftesswebp " TESSARY_PLUGIN_VERSION " - WebP (libwebp)", kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const webp::WebpDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
