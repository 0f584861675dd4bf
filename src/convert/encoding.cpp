#include "convert/encoding.h"

#include <chrono>
#include <utility>

#include "app/base/error.h"
#include "convert/decode_filter.h"
#include "convert/kept_metadata.h"
#include "convert/no_system_messages.h"
#include "convert/save_extension.h"
#include "picture/bitmap_file.h"
#include "picture/save/save_progress.h"

namespace tessary {

namespace {

constexpr size_t kMostOfSmallFile = 16u << 20;  // bytes of its picture

}  // namespace

const SaverFormat* FormatToMake(const ReadResult& read, const ConvertSettings& settings,
                                size_t most) {
    const Picture& picture = read.picture;
    const bool isWanted = picture && picture.Info().size() + picture.Bits().size() <= most &&
                          CheckDecodeSize(picture.Width(), picture.Height(), settings) &&
                          (read.damage.empty() || !settings.skipDamaged);
    return isWanted ? SaveFormat(picture.Header().bitCount, settings) : nullptr;
}

bool Encoding::WaitFor(DWORD milliseconds) {
    std::unique_lock lock(mutex_);
    return done_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                          [this] { return isDone_.load(); });
}

// A damaged one is a matter for its turn: plug-ins may know more of it.
void Encoding::ReadBitmap(const ConvertOptions& options) {
    std::wstring trouble;
    if (IsBITMAPFile(bitmap_, trouble) != BitmapCheck::kYes) return;
    ReadResult read{.kind = kFileBitmap};
    const auto stamp = options.save.keepDates != 0 ? ExactStampOf(bitmap_) : std::nullopt;
    if (!ReadBitmapFile(bitmap_, read.picture, {}, &read.damage)) return;
    KeepMetadata(read, bitmap_, stamp, options);
    format_ = FormatToMake(read, options.convert, kMostOfSmallFile);
    picture_ = read.picture.Another();
    read_ = std::move(read);
}

void Encoding::Do(const ConvertOptions& options, const std::atomic<bool>& isGivenUp) {
    std::shared_ptr<const EncodedPicture> made;
    Trapped([&] {
        if (!bitmap_.empty()) ReadBitmap(options);
        if (format_ == nullptr) return;
        const SaveProgress progress([&](int percent) {
            percent_ = percent;
            return !isGivenUp;
        });
        made = EncodePicture(picture_, *format_, options.save, SaveProgress::PassThrough());
    });
    picture_ = {};
    if (made && read_) read_->picture = {};
    const std::lock_guard lock(mutex_);
    made_ = std::move(made);
    isDone_ = true;
    done_.notify_all();
}

Encoders::~Encoders() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        waiting_.clear();
    }
    wanted_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

std::shared_ptr<Encoding> Encoders::Begin(std::shared_ptr<Encoding> encoding) {
    const std::lock_guard lock(mutex_);
    if (idle_ <= waiting_.size() && threads_.size() < most_) {
        threads_.emplace_back([this] { Work(); });
    }
    waiting_.push_back(encoding);
    wanted_.notify_one();
    return encoding;
}

void Encoders::Work() {
    const NoSystemMessages quiet;
    std::unique_lock lock(mutex_);
    while (!isEnding_) {
        if (waiting_.empty()) {
            ++idle_;
            wanted_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
            --idle_;
            continue;
        }
        const std::shared_ptr<Encoding> next = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        if (next.use_count() > 1) next->Do(options_, isEnding_);
        lock.lock();
    }
}

}  // namespace tessary
