// Pictures on their way to being files.
#pragma once

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "convert/convert_options.h"
#include "picture/read/read_picture.h"
#include "picture/save/encoded_picture.h"

namespace tessary {

// In which format the file of a picture can be made before its turn; null: it is not to be saved,
// as far as its own damage and size tell, or has more than `most` bytes: then file and picture
// would need too much room beside each other.
const SaverFormat* FormatToMake(const ReadResult& read, const ConvertSettings& settings,
                                size_t most);

// One that is made into the bytes of its file on another thread, which may begin with reading it.
class Encoding {
  public:
    // It is done already.
    explicit Encoding(std::shared_ptr<const EncodedPicture> made)
        : made_(std::move(made)), isDone_(true) {}
    Encoding(Picture picture, const SaverFormat& format)
        : picture_(std::move(picture)), format_(&format) {}
    // Of a bitmap file, for which no plug-in is asked.
    explicit Encoding(std::wstring bitmap) : bitmap_(std::move(bitmap)) {}

    bool IsDone() const { return isDone_; }
    // Waits at most so long; whether it is done.
    bool WaitFor(DWORD milliseconds);
    int Percent() const { return percent_; }
    // The rest only of one that is done.

    // Null: it cannot be made so.
    const EncodedPicture* Made() const { return made_.get(); }
    bool IsBitmap() const { return read_.has_value(); }
    // Of a bitmap, once; its picture may have given way to what was made. Nothing: it is none.
    std::optional<ReadResult> TakeRead() { return std::exchange(read_, {}); }

  private:
    friend class Encoders;
    void Do(const ConvertOptions& options, const std::atomic<bool>& isGivenUp);
    void ReadBitmap(const ConvertOptions& options);

    std::wstring bitmap_;
    std::optional<ReadResult> read_;
    Picture picture_;  // until it is done
    const SaverFormat* format_ = nullptr;
    std::shared_ptr<const EncodedPicture> made_;
    std::mutex mutex_;
    std::condition_variable done_;
    std::atomic<int> percent_ = 0;
    std::atomic<bool> isDone_ = false;
};

// The threads that do it, in the order of the wishes.
class Encoders {
  public:
    // So many threads at most; they begin when there is something to do. The options must outlive
    // this.
    Encoders(int threads, const ConvertOptions& options)
        : most_(static_cast<size_t>(threads)), options_(options) {}
    Encoders(const Encoders&) = delete;
    Encoders& operator=(const Encoders&) = delete;
    // What is under way is given up, and waited for.
    ~Encoders();

    // What nobody holds any more is not begun. Throws when there is no memory, or no thread.
    std::shared_ptr<Encoding> Begin(std::shared_ptr<Encoding> encoding);

  private:
    void Work();

    const size_t most_;
    const ConvertOptions& options_;
    std::mutex mutex_;
    std::condition_variable wanted_;
    std::deque<std::shared_ptr<Encoding>> waiting_;
    size_t idle_ = 0;
    std::atomic<bool> isEnding_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace tessary
