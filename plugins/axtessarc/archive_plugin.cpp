// axtessarc.spi: who it is.
#include <array>

#include "plugins/common/bundled_plugin.h"

namespace tessary::spi {

const PluginIdentity& Identity() {
    static constexpr std::array kFileTypes{
        FileType{"*.zip;*.cbz", L"ZIP書庫", "ZIP"},
        FileType{"*.lzh;*.lha;*.lzs;*.pma", L"LZH書庫", "LZH"},
        FileType{"*.7z;*.cb7", L"7z書庫", "7z"},
        FileType{"*.rar;*.cbr", L"RAR書庫", "RAR"},
        FileType{"*.cab", L"CAB書庫", "CAB"},
        FileType{"*.tar;*.cbt;*.tgz;*.tbz;*.tbz2;*.txz", L"TAR書庫", "TAR"},
        FileType{"*.gz;*.bz2;*.xz", L"圧縮ファイル", "Compressed file"},
    };
    static constexpr PluginIdentity kIdentity{"axtessarc " TESSARY_PLUGIN_VERSION
                                              " - ZIP, LZH, 7z, RAR, CAB, TAR (libarchive, lhasa)",
                                              kFileTypes};
    return kIdentity;
}

}  // namespace tessary::spi
