// iftesswic.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftesswic/wic_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.ico;*.cur", L"アイコン・カーソル", "Icon"},
        FileType{"*.heic;*.heif;*.hif;*.avif", L"HEIF・AVIF形式", "HEIF, AVIF"},
        FileType{"*.jxr;*.wdp;*.hdp", L"JPEG XR形式", "JPEG XR"},
        FileType{"*.dds", L"DDS形式", "DDS"},
    };
    static constexpr PluginIdentity kIdentity{
        "iftesswic " TESSARY_PLUGIN_VERSION " - ICO, HEIF, JPEG XR (WIC)", kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const wic::WicDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
