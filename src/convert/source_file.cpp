#include "convert/source_file.h"

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "convert/plugin_use.h"
#include "picture/bitmap_file.h"
#include "picture/show/modShowPicture.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// The plug-in that the kind test has just left bound to the file; empty when there is none.
std::wstring BoundPluginKey(const std::wstring& path) {
    for (const auto& plugin : SusieCollection().NewEnum()) {
        if (EqualsIgnoreCase(plugin->GetFile(), path)) return plugin->DllName();
    }
    return {};
}

// The reason that a plug-in itself tells of; kNone when it tells nothing.
FileReason ReasonTold(susie::Condition condition) {
    switch (condition) {
        case susie::kConditionPasswordNeeded:
        case susie::kConditionDirectoryEncrypted:
            return FileReason::kPassword;
        case susie::kConditionVolumeMissing:
            return FileReason::kVolumeMissing;
        case susie::kConditionKindNotRead:
            return FileReason::kKindNotRead;
        case susie::kConditionDamaged:
            return FileReason::kBrokenData;
        default:
            return FileReason::kNone;
    }
}

}  // namespace

PluginFailure FailureOf(const clsSusie& plugin, uint32_t result) {
    return {result, plugin.ErrorFunction(), plugin.ErrorString(), plugin.Condition().kind};
}

FileReason ReasonOf(const Search::Refusal& refusal) {
    if (refusal.hasCrashed) return FileReason::kPluginCrashed;
    const FileReason told = ReasonTold(refusal.condition);
    return told == FileReason::kNone ? FileReason::kPluginFailed : told;
}

FileReason ReasonOf(const PluginFailure& failure) {
    switch (static_cast<int32_t>(failure.result)) {
        case susie::kOutOfMemory:
        case susie::kMemoryError:
            return FileReason::kOutOfMemory;
        case susie::kReadError:
            return FileReason::kUnreadable;
        case kResultCrashed:
            return FileReason::kPluginCrashed;
        default:
            break;
    }
    if (const FileReason told = ReasonTold(failure.condition); told != FileReason::kNone)
        return told;
    return failure.result == susie::kBrokenData ? FileReason::kBrokenData
                                                : FileReason::kPluginFailed;
}

std::wstring FailureText(const PluginFailure& failure, const std::wstring& pluginKey) {
    return failure.text + L" (" + SusieCollection().NameOf(pluginKey) + L')';
}

SourceFile LookAtFile(const std::wstring& path) {
    SourceFile file;
    file.kind = KindByContent(path);
    if (file.kind == kFilePicture || file.kind == kFileArchive) {
        file.pluginKey = BoundPluginKey(path);
    }
    if (file.kind == kFileUnknown) file.refusal = SusieCollection().LastRefusal();
    return file;
}

FileReason ReasonUnknown(const std::wstring& path) {
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return ReasonOfReadError(GetLastError());
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.Get(), &size) && size.QuadPart == 0) return FileReason::kEmptyFile;
    return SusieCollection().Count() == 0 ? FileReason::kNoPlugin : FileReason::kUnknownFormat;
}

SourcePicture ReadBitmapSource(const std::wstring& path, const SusieProgress& progress) {
    SourcePicture source;
    ReadBitmapFile(path, source.picture, progress, &source.damage);
    return source;
}

SourcePicture DecodeSource(const std::wstring& path, const std::wstring& pluginKey,
                           const SusieProgress& progress) {
    CollectionSusie& plugins = SusieCollection();
    SourcePicture source;
    source.pluginKey = pluginKey;
    source.isRefused = true;
    Search search = plugins.SearchFor(path);
    while (clsSusie* const found = search.Next()) {
        clsSusie& plugin = *found;
        source.isRefused = false;
        source.pluginKey = plugin.DllName();
        if (plugin.DllStyle() == kStyleArchive) {
            source.isArchive = true;
            return source;
        }
        const uint32_t result = ResultOf(
            [&] { plugin.DecodePicture(DecodeTarget::kMemory, 0, progress, {}, &source.picture); });
        if (result == 0) {
            source.damage = plugin.Damage();
            source.failure = {};
            break;
        }
        source.failure = FailureOf(plugin, result);
        search.NoteFailure();
    }
    plugins.UnloadFile();
    return source;
}

}  // namespace tessary
