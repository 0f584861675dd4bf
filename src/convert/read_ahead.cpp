#include "convert/read_ahead.h"

#include <utility>

#include "app/base/distant_file.h"
#include "app/base/error.h"
#include "convert/convert_progress.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr uint64_t kMostBytes = 256u << 10;  // of a file that is read in a moment

void ReadPicture(const std::wstring& path, SourceFile& file) {
    if (file.kind == kFileBitmap) file.picture = ReadBitmapSource(path, TellNothing);
    if (file.kind == kFilePicture) file.picture = DecodeSource(path, file.pluginKey, TellNothing);
}

}  // namespace

// The plug-in of an archive is still bound to it.
ReadAhead::~ReadAhead() {
    if (!path_.empty()) SusieCollection().UnloadFile();
}

void ReadAhead::Read(const std::wstring& path) noexcept {
    path_.clear();
    reads_ = true;
    isDisturbed_ = false;
    Trapped([&] {
        if (IsNotOnThisDisk(path)) return;
        const std::optional<FileStamp> stamp = StampOf(path);
        if (!stamp || stamp->size > kMostBytes) return;
        stamp_ = *stamp;
        file_ = LookAtFile(path);
        ReadPicture(path, file_);
        if (!isDisturbed_) path_ = path;
    });
    reads_ = false;
}

std::optional<SourceFile> ReadAhead::Take(const std::wstring& path) {
    SourceFile file = std::exchange(file_, {});
    const bool isThis = !path_.empty() && path == std::exchange(path_, {});
    if (!isThis || StampOf(path) != stamp_) return std::nullopt;
    return file;
}

bool ReadAhead::Disturb() {
    isDisturbed_ = true;
    return reads_;
}

}  // namespace tessary
