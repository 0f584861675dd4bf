// What is done of files before their turn. All that others can see of a file happens in its turn.
#include <algorithm>

#include "app/base/distant_file.h"
#include "app/base/error.h"
#include "app/base/paths.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/save_extension.h"
#include "picture/save/save_picture.h"

namespace tessary {
namespace {

constexpr uint64_t kSmallFile = 256u << 10;  // bytes; to be read in a moment

// Larger ones are written as they are made: the file would need room beside its picture.
constexpr size_t kMostBytes = 64u << 20;

constexpr DWORD kBeat = 30;  // milliseconds between two looks at how far an encoding is

}  // namespace

// Extracted members make way for others, and are deleted by patterns.
ConvertRun::Upcoming ConvertRun::LookAt(const WorkEntry& entry) const {
    Upcoming look{entry.path};
    if (entry.IsExtracted() || !CheckDecodeFileName(FileNameOf(entry.path), settings_)) return look;
    const std::optional<std::wstring> extension = OnlySaveExtension(settings_);
    if (extension && names_.IsLikelyToSkip(entry, *extension)) return look;
    look.stamp = StampOf(entry.path);
    return look;
}

void ConvertRun::LookAhead(int32_t index) {
    if (list_.UpperBound() != upcomingOf_) upcoming_.clear();  // it has grown, maybe in the middle
    upcomingOf_ = list_.UpperBound();
    for (; !upcoming_.empty() && upcomingFrom_ <= index; ++upcomingFrom_)
        upcoming_.pop_front();
    if (upcoming_.empty()) upcomingFrom_ = index + 1;
    const int32_t last = std::min(list_.UpperBound(), index + 2 * threads_);
    for (auto next = upcomingFrom_ + static_cast<int32_t>(upcoming_.size()); next <= last; ++next)
        upcoming_.push_back(LookAt(list_.At(next)));
}

void ConvertRun::PlanAhead(int32_t index) {
    LookAhead(index);
    while (BeginNext(index))
        continue;
    if (!filesAhead_) return;
    std::vector<std::wstring> paths;
    for (const Upcoming& look : upcoming_) {
        if (look.stamp && look.stamp->size > kSmallFile) paths.push_back(look.path);
    }
    filesAhead_->Plan(list_.At(index).path, paths);
}

ConvertRun::Upcoming* ConvertRun::NextSmall(int32_t index) {
    const auto place = static_cast<size_t>(ahead_.Last(index) + 1 - upcomingFrom_);
    if (place >= upcoming_.size()) return nullptr;
    Upcoming& next = upcoming_[place];
    return next.stamp && next.stamp->size <= kSmallFile ? &next : nullptr;
}

bool ConvertRun::BeginNext(int32_t index) {
    Upcoming* const next = NextSmall(index);
    const bool isBitmap = next != nullptr && LookAtName(next->path).kind == kFileBitmap;
    if (!isBitmap || !ahead_.MayGoOn() || IsNotOnThisDisk(next->path)) return false;
    const auto encoding = Trapped(std::shared_ptr<Encoding>(), [&] {
        return encoders_.Begin(std::make_shared<Encoding>(next->path));
    });
    if (encoding) ahead_.Hold(ahead_.Last(index) + 1, next->path, *next->stamp, encoding);
    return encoding != nullptr;
}

bool ConvertRun::ReadNext(int32_t index) {
    if (BeginNext(index)) return true;
    Upcoming* const next = NextSmall(index);
    if (next == nullptr || !ahead_.MayAskPlugins()) return false;
    if (!monitor_.SetProgressBar(-1, -1, 0, 0)) return false;
    // Once: what is not held then is left to its turn.
    const FileStamp stamp = *std::exchange(next->stamp, {});
    return ahead_.Read(ahead_.Last(index) + 1, next->path, stamp);
}

std::optional<SourceAtHand> ConvertRun::TakeAhead(const FileAtHand& file) {
    const std::wstring& path = file.entry.path;
    std::optional<SourceAtHand> source = ahead_.Take(file.index, path);
    if (!source) return filesAhead_ ? filesAhead_->Take(path) : std::nullopt;
    if (source->read || !source->encoding) return source;
    Await(*source->encoding, file.index);
    source->read = source->encoding->TakeRead();
    if (source->encoding->Made() == nullptr) source->encoding.reset();
    return source->read ? std::move(source) : std::nullopt;
}

void ConvertRun::Await(Encoding& encoding, int32_t index) {
    while (!encoding.IsDone()) {
        if (ReadNext(index)) continue;
        if (!encoding.WaitFor(kBeat)) TellProgress(encoding.Percent(), 100);
    }
}

std::shared_ptr<Encoding> ConvertRun::BeginEncoding(const ReadResult& read) {
    const SaverFormat* const format = FormatToMake(read, settings_, kMostBytes);
    if (format == nullptr) return nullptr;
    return Trapped(std::shared_ptr<Encoding>(), [&] {
        return encoders_.Begin(std::make_shared<Encoding>(read.picture.Another(), *format));
    });
}

const EncodedPicture* ConvertRun::Encoded(const FileAtHand& file, SourceAtHand& source) {
    if (!source.encoding) source.encoding = BeginEncoding(*source.read);
    if (!source.encoding) return nullptr;
    Await(*source.encoding, file.index);
    return source.encoding->Made();
}

DWORD ConvertRun::SavePicture(const FileAtHand& file, SourceAtHand& source,
                              const std::wstring& output) {
    const auto callback = reinterpret_cast<LONG_PTR>(&ConvertProgressCallback);
    const EncodedPicture* const encoded = Encoded(file, source);
    SetLastError(ERROR_SUCCESS);
    const bool isSaved =
        encoded != nullptr ? SaveEncoded(*encoded, output, callback)
                           : SavePictureFile(source.read->picture, output, options_.save, callback);
    const DWORD error = GetLastError();
    if (isSaved) TellProgress(1, 1);
    return isSaved ? ERROR_SUCCESS : error == ERROR_SUCCESS ? DWORD{ERROR_WRITE_FAULT} : error;
}

}  // namespace tessary
