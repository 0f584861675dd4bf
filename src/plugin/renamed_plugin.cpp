#include "plugin/renamed_plugin.h"

#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

struct FormerPlugin {
    const wchar_t* name;
    const wchar_t* productEnd;  // behind the name and a version
    const wchar_t* successor;
};

constexpr FormerPlugin kFormerPlugins[] = {
    {L"iftjpeg", L" - JPEG (libjpeg-turbo)", L"iftessjpeg.spi"},
    {L"iftpng", L" - PNG (libpng)", L"iftesspng.spi"},
    {L"iftwic", L" - GIF, TIFF, ICO, WebP, HEIF (WIC)", L"iftesswic.spi"},
    {L"axtarc", L" - ZIP, LZH, 7z, RAR, CAB, TAR (libarchive, lhasa)", L"axtessarc.spi"},
};

}  // namespace

bool IsRenamedPlugin(const std::wstring& path, const std::wstring& product) {
    const std::wstring name = FileNameOf(path);
    return std::ranges::any_of(kFormerPlugins, [&](const FormerPlugin& former) {
        return EqualsIgnoreCase(name, std::wstring(former.name) + L".spi") &&
               product.starts_with(std::wstring(former.name) + L' ') &&
               product.ends_with(former.productEnd) &&
               PathExists(path.substr(0, path.size() - name.size()) + former.successor);
    });
}

}  // namespace tessary
