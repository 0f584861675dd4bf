#include "convert/read_ahead.h"

#include <utility>

#include "app/base/distant_file.h"
#include "app/base/error.h"
#include "convert/convert_progress.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr uint64_t kMostBytes = 256u << 10;  // of a file that is read in a moment

}  // namespace

bool IsReadInAMoment(const std::wstring& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    return stamp && stamp->size <= kMostBytes;
}

// The plug-in of an archive is still bound to it.
ReadAhead::~ReadAhead() {
    if (held_) SusieCollection().UnloadFile();
}

void ReadAhead::Read(const std::wstring& path) noexcept {
    held_.reset();
    reads_ = true;
    isDisturbed_ = false;
    Trapped([&] {
        if (IsNotOnThisDisk(path)) return;
        const std::optional<FileStamp> stamp = StampOf(path);
        if (!stamp || stamp->size > kMostBytes) return;
        stamp_ = *stamp;
        SourceAtHand source{LookAtFile(path)};
        if (IsPictureKind(source.file.kind)) {
            source.read = ReadPicture(source.file, {.progress = TellNothing});
        }
        if (!isDisturbed_) held_ = std::move(source);
    });
    reads_ = false;
}

std::optional<SourceAtHand> ReadAhead::Take(const std::wstring& path) {
    std::optional<SourceAtHand> source = std::exchange(held_, {});
    const bool isThis = source && source->file.path == path && StampOf(path) == stamp_;
    return isThis ? std::move(source) : std::nullopt;
}

bool ReadAhead::Disturb() {
    isDisturbed_ = true;
    return reads_;
}

}  // namespace tessary
