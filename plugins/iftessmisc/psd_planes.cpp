#include "plugins/iftessmisc/psd_planes.h"

#include <algorithm>
#include <array>

#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

// PackBits: a row of its own.
size_t Unpack(ByteInput& input, uint32_t left, std::span<uint8_t> row) {
    size_t done = 0;
    while (done < row.size() && left > 1) {
        const int head = input.Byte();
        --left;
        if (head < 0) break;
        if (head == 0x80) continue;
        if (head > 0x80) {
            const int value = input.Byte();
            --left;
            if (value < 0) break;
            const size_t count =
                std::min<size_t>(static_cast<size_t>(257 - head), row.size() - done);
            std::fill_n(row.begin() + static_cast<ptrdiff_t>(done), count,
                        static_cast<uint8_t>(value));
            done += count;
            continue;
        }
        const size_t count =
            std::min({static_cast<size_t>(head) + 1, row.size() - done, size_t{left}});
        const size_t got = input.Read(row.subspan(done, count));
        done += got;
        left -= static_cast<uint32_t>(count);
        if (got < count) break;
    }
    return done;
}

}  // namespace

PsdPlanes::PsdPlanes(dib::ByteSource& source, const PsdFile& file, PsdPacking packing,
                     unsigned count)
    : isPacked_(packing == PsdPacking::kRuns) {
    const uint64_t start = file.pixelOffset + 2;
    if (!isPacked_) {
        for (unsigned i = 0; i < count; ++i)
            planes_.emplace_back(ByteInput(source, start + file.RowBytes() * file.height * i));
        return;
    }
    const size_t sizeBytes = file.isLarge ? 4 : 2;
    ByteInput sizes(source, start);
    uint64_t position = start + uint64_t{file.channels} * file.height * sizeBytes;
    std::array<uint8_t, 4> stored{};
    for (unsigned i = 0; i < count; ++i) {
        Plane plane(ByteInput{source});
        plane.position = position;
        for (uint32_t y = 0; y < file.height; ++y) {
            if (sizes.Read(std::span(stored).first(sizeBytes)) != sizeBytes) break;
            plane.sizes.push_back(sizeBytes == 4 ? Big32(stored.data()) : Big16(stored.data()));
            position += plane.sizes.back();
        }
        planes_.push_back(std::move(plane));
    }
}

size_t PsdPlanes::ReadRow(unsigned channel, std::span<uint8_t> row) {
    Plane& plane = planes_[channel];
    if (!isPacked_) return plane.input.Read(row);
    if (plane.next == plane.sizes.size()) return 0;
    const uint32_t size = plane.sizes[plane.next++];
    plane.input.Seek(plane.position);
    plane.position += size;
    return Unpack(plane.input, size, row);
}

}  // namespace tessary::misc
