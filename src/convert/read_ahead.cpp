#include "convert/read_ahead.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

#include "app/base/distant_file.h"
#include "app/base/error.h"
#include "app/base/text.h"
#include "convert/convert_progress.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr size_t kMostRoom = 32u << 20;  // of all pictures, in bytes

size_t BytesOf(const SourceAtHand& source) {
    const bool isPicture = source.read && source.read->picture;
    return isPicture ? source.read->picture.Info().size() + source.read->picture.Bits().size() : 0;
}

}  // namespace

// The plug-in of an archive is still bound to it.
ReadAhead::~ReadAhead() {
    if (!held_.empty()) Trapped([] { SusieCollection().UnloadFile(); });
}

bool ReadAhead::Read(int32_t index, const std::wstring& path, const FileStamp& stamp) noexcept {
    reads_ = true;
    isDisturbed_ = false;
    const bool isRead = Trapped(false, [&] {
        if (IsNotOnThisDisk(path)) return false;
        SourceAtHand source{LookAtFile(path)};
        const std::optional<FileStamp> exact = ExactStampOf(path);
        if (IsPictureKind(source.file.kind)) {
            source.read = ReadPicture(source.file,
                                      {.progress = TellNothing, .takesOwnColors = takesOwnColors_});
        }
        if (isDisturbed_) return false;
        const size_t bytes = BytesOf(source);
        if (bytes != 0) source.encoding = encode_(path, exact, *source.read);
        held_.push_back({index, stamp, bytes, false, std::move(source)});
        return true;
    });
    reads_ = false;
    return isRead;
}

int32_t ReadAhead::Last(int32_t atHand) const {
    return held_.empty() ? atHand : std::max(atHand, held_.back().index);
}

void ReadAhead::Hold(int32_t index, const std::wstring& path, const FileStamp& stamp,
                     std::shared_ptr<Encoding> encoding) {
    held_.push_back({index, stamp, static_cast<size_t>(stamp.size), true,
                     SourceAtHand{{.path = path, .kind = kFileBitmap}, {}, std::move(encoding)}});
}

bool ReadAhead::IsGood(const Held& held) {
    if (held.isElsewhere) return true;
    return held.bytes != 0 && EqualsIgnoreCase(held.source.read->plugin, held.source.file.plugin);
}

bool ReadAhead::MayAskPlugins() const {
    const auto isKnown = [](const Held& held) {
        return !held.isElsewhere ||
               (held.source.encoding->IsDone() && held.source.encoding->IsBitmap());
    };
    return MayGoOn() && std::ranges::all_of(held_, isKnown);
}

bool ReadAhead::MayGoOn() const {
    const bool isGood = held_.empty() || IsGood(held_.back());
    const size_t room = std::transform_reduce(held_.begin(), held_.end(), size_t{0}, std::plus{},
                                              [](const Held& held) { return held.bytes; });
    return isGood && room < kMostRoom;
}

std::optional<SourceAtHand> ReadAhead::Take(int32_t index, const std::wstring& path) {
    while (!held_.empty() && held_.front().index < index)
        held_.pop_front();
    if (held_.empty() || held_.front().index != index) return std::nullopt;
    Held held = std::move(held_.front());
    held_.pop_front();
    const bool isThis = held.source.file.path == path && StampOf(path) == held.stamp;
    return isThis ? std::optional(std::move(held.source)) : std::nullopt;
}

bool ReadAhead::Disturb() {
    isDisturbed_ = true;
    return reads_;
}

}  // namespace tessary
