#include "convert/read_ahead.h"

#include <utility>

#include "app/base/text.h"
#include "convert/convert_progress.h"
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

void ReadPicture(const std::wstring& path, SourceFile& file) {
    if (file.kind == kFileBitmap) file.picture = ReadBitmapSource(path, TellNothing);
    if (file.kind == kFilePicture) file.picture = DecodeSource(path, file.pluginKey, TellNothing);
}

}  // namespace

SourceFile LookAtFile(const std::wstring& path) {
    SourceFile file;
    file.kind = QueryFileKind(path);
    if (file.kind == kFilePicture || file.kind == kFileArchive) {
        file.pluginKey = BoundPluginKey(path);
    }
    return file;
}

// The plug-in of an archive is still bound to it.
ReadAhead::~ReadAhead() {
    if (!path_.empty()) SusieCollection().UnloadFile();
}

void ReadAhead::Read(const std::wstring& path) {
    path_.clear();
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp || stamp->size > kMostBytes) return;
    stamp_ = *stamp;
    file_ = {};
    reads_ = true;
    Trapped([&] {
        SourceFile file = LookAtFile(path);
        ReadPicture(path, file);
        file.errors = std::move(file_.errors);
        file_ = std::move(file);
        path_ = path;
    });
    reads_ = false;
}

std::optional<SourceFile> ReadAhead::Take(const std::wstring& path) {
    if (path_.empty() || path != std::exchange(path_, {}) || StampOf(path) != stamp_) {
        return std::nullopt;
    }
    return std::exchange(file_, {});
}

bool ReadAhead::Keep(const RaisedError& error) {
    if (reads_) file_.errors.push_back(error);
    return reads_;
}

}  // namespace tessary
