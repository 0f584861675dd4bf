#include "plugins/common/whole_source.h"

#include <algorithm>
#include <new>

namespace tessary::codec {
namespace {

// A host's process has 2 GB of addresses; the picture needs its share of them.
constexpr uint64_t kMostBytes = 1u << 30;

}  // namespace

Result ReadPart(dib::ByteSource& source, uint64_t offset, uint64_t size,
                std::vector<uint8_t>& bytes) {
    const uint64_t all = source.Size();
    const uint64_t there = std::min(size, all - std::min(offset, all));
    if (there > kMostBytes) return Result::kOutOfMemory;
    try {
        bytes.resize(static_cast<size_t>(there));
    } catch (const std::bad_alloc&) {
        return Result::kOutOfMemory;
    }
    const auto got = source.ReadAt(offset, bytes);
    if (!got) return Result::kReadError;
    bytes.resize(*got);
    return Result::kSuccess;
}

}  // namespace tessary::codec
