// iftessjpeg.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftessjpeg/jpeg_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.jpg;*.jpeg;*.jpe;*.jfif;*.jif;*.thm;*.mpo", L"JPEG形式", "JPEG"},
    };
    static constexpr PluginIdentity kIdentity{
        "iftessjpeg " TESSARY_PLUGIN_VERSION " - JPEG (libjpeg-turbo)", kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const jpeg::JpegDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
