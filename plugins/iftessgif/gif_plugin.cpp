// iftessgif.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftessgif/gif_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.gif", L"GIF形式", "GIF"},
    };
    static constexpr PluginIdentity kIdentity{"iftessgif " TESSARY_PLUGIN_VERSION " - GIF (giflib)",
                                              kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const gif::GifDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
