#include "helpers/dib/byte_stream.h"

namespace tessary::dib {

ByteStream::ByteStream(ByteSource& source, uint64_t begin, uint64_t end, const Progress& progress)
    : source_(source), progress_(progress), begin_(begin), end_(end), position_(begin) {}

size_t ByteStream::ReadSource(std::span<uint8_t> into) {
    if (error_ != DibError::kNone || position_ >= end_) return 0;
    const auto count = static_cast<size_t>(std::min<uint64_t>(into.size(), end_ - position_));
    const std::optional<size_t> got = source_.ReadAt(position_, into.first(count));
    if (!got) {
        error_ = DibError::kReadFailed;
        return 0;
    }
    position_ += *got;
    if (*got < count) end_ = position_;

    const uint64_t total = end_ - begin_;
    const int percent = total == 0 ? 100 : static_cast<int>((position_ - begin_) * 100 / total);
    if (progress_ && percent != percent_) {
        percent_ = percent;
        if (!progress_(percent)) error_ = DibError::kAborted;
    }
    return error_ == DibError::kNone ? *got : 0;
}

bool ByteStream::Refill() {
    at_ = 0;
    filled_ = ReadSource(buffer_);
    return filled_ != 0;
}

size_t ByteStream::Read(std::span<uint8_t> into) {
    size_t done = 0;
    while (done < into.size()) {
        const auto rest = into.subspan(done);
        if (at_ != filled_) {
            const size_t count = std::min(rest.size(), filled_ - at_);
            std::memcpy(rest.data(), buffer_.data() + at_, count);
            at_ += count;
            done += count;
        } else if (rest.size() >= kBufferSize) {
            const size_t count = ReadSource(rest.first(std::min(rest.size(), kDirectReadSize)));
            if (count == 0) break;
            done += count;
        } else if (!Refill()) {
            break;
        }
    }
    return done;
}

void ByteStream::Skip(uint64_t count) {
    const uint64_t buffered = std::min<uint64_t>(count, filled_ - at_);
    at_ += static_cast<size_t>(buffered);
    position_ += std::min(count - buffered, end_ - position_);
}

}  // namespace tessary::dib
