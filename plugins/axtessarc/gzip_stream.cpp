#include "plugins/axtessarc/gzip_stream.h"

#include <new>
#include <utility>

namespace tessary::unpack {
namespace {

constexpr size_t kBlockSize = 64 * 1024;
constexpr int kGzipOnly = 16;
constexpr uint8_t kFirstByte = 0x1F;  // of every member

}  // namespace

GzipStream::GzipStream(Input input) : input_(std::move(input)), packed_(kBlockSize) {
    if (inflateInit2(&stream_, kGzipOnly + MAX_WBITS) != Z_OK) throw std::bad_alloc();
}

std::optional<size_t> GzipStream::Read(std::span<uint8_t> into) {
    stream_.next_out = into.data();
    stream_.avail_out = static_cast<uInt>(into.size());
    while (stream_.avail_out != 0 && !hasEnded_ && !hasFailed_) {
        if (stream_.avail_in == 0 && !Refill()) break;
        if (!isInMember_) {
            GoOnBehindMember();
            continue;
        }
        const int state = inflate(&stream_, Z_NO_FLUSH);
        isInMember_ = state != Z_STREAM_END;
        hasFailed_ = isInMember_ && state != Z_OK;
        isDamaged_ = state == Z_DATA_ERROR;
        isOutOfMemory_ = state == Z_MEM_ERROR;
    }
    const size_t count = into.size() - stream_.avail_out;
    return count == 0 && hasFailed_ ? std::nullopt : std::optional(count);
}

bool GzipStream::Refill() {
    const auto count = input_(packed_);
    hasFailed_ = !count || (*count == 0 && isInMember_);
    hasEnded_ = count == 0u;
    stream_.next_in = packed_.data();
    stream_.avail_in = static_cast<uInt>(count.value_or(0));
    return stream_.avail_in != 0;
}

// Members one behind the other are one; what else follows is padding.
void GzipStream::GoOnBehindMember() {
    isInMember_ = *stream_.next_in == kFirstByte;
    hasEnded_ = !isInMember_;
    inflateReset(&stream_);
}

}  // namespace tessary::unpack
