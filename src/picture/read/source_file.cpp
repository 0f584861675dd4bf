#include "picture/read/source_file.h"

#include "app/base/distant_file.h"
#include "app/base/paths.h"
#include "picture/bitmap_file.h"
#include "plugin/modSusie.h"
#include "plugin/no_host.h"

namespace tessary {
namespace {

// `plugin` takes it; null: none does.
SourceFile TakenBy(const clsSusie* plugin, const std::wstring& path) {
    if (plugin == nullptr) return {.path = path};
    return {.path = path,
            .kind = plugin->DllStyle() == kStyleArchive ? kFileArchive : kFilePicture,
            .plugin = plugin->DllName()};
}

}  // namespace

SourceFile LookAtFile(const std::wstring& path) {
    std::wstring trouble;
    switch (IsBITMAPFile(path, trouble)) {
        case BitmapCheck::kYes:
            return {.path = path, .kind = kFileBitmap};
        case BitmapCheck::kUnreadable:
            return {.path = path, .trouble = std::move(trouble)};
        case BitmapCheck::kNo:
            break;
    }
    CollectionSusie& plugins = SusieCollection();
    SourceFile file = TakenBy(plugins.QueryFile(path), path);
    if (file.kind == kFileUnknown) file.refusal = plugins.LastRefusal();
    return file;
}

SourceFile LookAtName(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    if (extension == L"BMP" || extension == L"DIB") return {.path = path, .kind = kFileBitmap};
    return TakenBy(SusieCollection().FirstNaming(path), path);
}

SourceFile QueryFile(const std::wstring& path) {
    return IsNotOnThisDisk(path) ? LookAtName(path) : LookAtFile(path);
}

bool IsWorthShowing(const std::wstring& path) {
    const SourceFile file = QueryFile(path);
    return file.kind != kFileUnknown || (file.refusal && IsNoHostText(file.refusal->reason));
}

}  // namespace tessary
