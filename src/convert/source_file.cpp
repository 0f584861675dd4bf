#include "convert/source_picture.h"

#include "convert/plugin_use.h"
#include "picture/bitmap_file.h"

namespace tessary {

PluginFailure FailureOf(const clsSusie& plugin, uint32_t result) {
    return {result, plugin.ErrorFunction(), plugin.ErrorString()};
}

SourcePicture ReadBitmapSource(const std::wstring& path, const SusieProgress& progress) {
    PicturePair pair;
    SourcePicture source;
    if (ReadBitmapFile(path, pair, progress)) source.picture = OwnedPicture(pair);
    return source;
}

SourcePicture DecodeSource(const std::wstring& path, const std::wstring& pluginKey,
                           const SusieProgress& progress) {
    SourcePicture source;
    const PluginUse plugin(pluginKey);
    source.isRefused = !plugin.Bind(path);
    if (source.isRefused) return source;
    PicturePair pair;
    const uint32_t result =
        ResultOf([&] { plugin->DecodePicture(DecodeTarget::kMemory, 0, progress, {}, &pair); });
    if (result != 0) {
        source.failure = FailureOf(*plugin, result);
    } else {
        source.picture = OwnedPicture(pair);
    }
    return source;
}

}  // namespace tessary
