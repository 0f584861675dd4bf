// iftessmisc.spi: who it is.
#include <array>

#include "plugins/common/picture_plugin.h"
#include "plugins/iftessmisc/misc_decoder.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.tga;*.vda;*.icb;*.vst", L"TGA形式", "TGA"},
        FileType{"*.pnm;*.pbm;*.pgm;*.ppm;*.pam;*.pfm", L"PNM形式", "PNM"},
        FileType{"*.psd;*.psb", L"Photoshop形式", "PSD"},
        FileType{"*.pcx;*.pcc;*.dcx", L"PCX形式", "PCX"},
        FileType{"*.sgi;*.rgb;*.rgba;*.bw", L"SGI形式", "SGI"},
        FileType{"*.qoi", L"QOI形式", "QOI"},
        FileType{"*.ff;*.farbfeld", L"farbfeld形式", "farbfeld"},
        FileType{"*.xbm", L"XBM形式", "XBM"},
        FileType{"*.xpm", L"XPM形式", "XPM"},
        FileType{"*.hdr;*.rgbe;*.xyze", L"Radiance HDR形式", "HDR"},
        FileType{"*.mag", L"MAG形式", "MAG"},
    };
    static constexpr PluginIdentity kIdentity{
        "iftessmisc " TESSARY_PLUGIN_VERSION " - TGA, PNM, PSD, PCX, SGI and others", kFileTypes};
    return kIdentity;
}

const codec::PictureCodec& Codec() {
    static const misc::MiscDecoder decoder;
    return decoder;
}

}  // namespace tessary::spi
