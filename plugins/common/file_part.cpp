#include "plugins/common/file_part.h"

#include <algorithm>

namespace tessary::spi {
namespace {

constexpr size_t kReadAhead = 32 * 1024;

}  // namespace

std::unique_ptr<FilePart> FilePart::Open(const std::wstring& path, uint64_t start) {
    auto file = files::FileSource::Open(path);
    return file ? std::make_unique<FilePart>(std::move(*file), start) : nullptr;
}

std::optional<size_t> FilePart::ReadAt(uint64_t offset, std::span<uint8_t> out) {
    if (offset >= Size()) return 0;
    if (out.size() >= kReadAhead) return file_.ReadAt(start_ + offset, out);
    size_t done = 0;
    while (done < out.size()) {
        const uint64_t wanted = offset + done;
        if (wanted < aheadOffset_ || wanted >= aheadOffset_ + ahead_.size()) {
            ahead_.resize(kReadAhead);
            const auto got = file_.ReadAt(start_ + wanted, ahead_);
            ahead_.resize(got.value_or(0));
            aheadOffset_ = wanted;
            if (!got) return std::nullopt;
            if (*got == 0) break;
        }
        const auto from = static_cast<size_t>(wanted - aheadOffset_);
        const size_t count = std::min(out.size() - done, ahead_.size() - from);
        std::copy_n(ahead_.begin() + static_cast<ptrdiff_t>(from), count,
                    out.begin() + static_cast<ptrdiff_t>(done));
        done += count;
    }
    return done;
}

}  // namespace tessary::spi
