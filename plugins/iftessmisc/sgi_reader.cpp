// Pictures of Silicon Graphics. Format: The SGI Image File Format, version 1.00.
#include <algorithm>
#include <array>

#include "plugins/common/palette.h"
#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr uint16_t kSignature = 474;
constexpr size_t kHeaderSize = 512;
constexpr size_t kColorMapOffset = 104;
constexpr size_t kTableBlock = 1u << 10;

struct SgiHeader {
    bool isEncoded;
    uint8_t sampleBytes;
    uint32_t width, height;
    uint32_t channels;

    size_t RowBytes() const { return size_t{width} * sampleBytes; }
};

// One channel's rows, the bottom one first.
class Channel {
  public:
    Channel(dib::ByteSource& source, const SgiHeader& header, uint32_t number)
        : header_(header),
          input_(source, kHeaderSize + uint64_t{header.RowBytes()} * header.height * number),
          offsets_(source, kHeaderSize + uint64_t{number} * header.height * 4, kTableBlock),
          lengths_(source, kHeaderSize + (uint64_t{header.channels} + number) * header.height * 4,
                   kTableBlock) {}

    // Fills what there is of the next row; how many samples that are.
    size_t ReadRow(std::span<uint8_t> row) {
        if (!header_.isEncoded) return input_.Read(row) / header_.sampleBytes;
        std::array<uint8_t, 4> offset{}, length{};
        if (offsets_.Read(offset) != 4 || lengths_.Read(length) != 4) return 0;
        input_.Seek(Big32(offset.data()));
        return Unpack(row, Big32(length.data()));
    }

  private:
    // -1 at the end of the row's data.
    int Sample(uint64_t& left) {
        if (left < header_.sampleBytes) return -1;
        left -= header_.sampleBytes;
        const int high = input_.Byte();
        if (header_.sampleBytes == 1 || high < 0) return high;
        const int low = input_.Byte();
        return low < 0 ? -1 : high << 8 | low;
    }
    void Put(std::span<uint8_t> row, size_t at, int sample) const {
        if (header_.sampleBytes == 1) {
            row[at] = static_cast<uint8_t>(sample);
        } else {
            row[2 * at] = static_cast<uint8_t>(sample >> 8);
            row[2 * at + 1] = static_cast<uint8_t>(sample);
        }
    }
    size_t Unpack(std::span<uint8_t> row, uint64_t left) {
        size_t x = 0;
        while (x < header_.width) {
            const int head = Sample(left);
            const size_t count = std::min<size_t>(head & 0x7F, header_.width - x);
            if (head < 0 || (head & 0x7F) == 0) return x;
            if ((head & 0x80) == 0) {
                const int value = Sample(left);
                if (value < 0) return x;
                for (size_t i = 0; i < count; ++i)
                    Put(row, x++, value);
                continue;
            }
            for (size_t i = 0; i < count; ++i) {
                const int value = Sample(left);
                if (value < 0) return x;
                Put(row, x++, value);
            }
        }
        return x;
    }

    const SgiHeader header_;
    ByteInput input_;
    ByteInput offsets_;
    ByteInput lengths_;
};

class SgiReader final : public PictureReader {
  public:
    SgiReader(dib::ByteSource& source, const SgiHeader& header)
        : header_(header), row_(header.RowBytes()) {
        outline_.width = header.width;
        outline_.height = header.height;
        outline_.orientation = kBottomUp;
        const bool isDeep = header.sampleBytes == 2;
        switch (header.channels) {
            case 1:
                outline_.pixels = Pixels::kIndexed;
                outline_.palette = codec::GreyPalette(8);
                break;
            case 2:
                outline_.pixels = Pixels::kGreyAlpha;
                break;
            case 3:
                outline_.pixels = isDeep ? Pixels::kBgr16 : Pixels::kBgr;
                break;
            default:
                outline_.pixels = isDeep ? Pixels::kBgra16 : Pixels::kBgra;
        }
        const uint32_t used = std::min(header.channels, 4u);
        for (uint32_t i = 0; i < used; ++i)
            channels_.emplace_back(source, header, i);
    }

    // A row that is damaged in its file does not take the others along: each has its own place.
    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        bool isThere = false;
        for (size_t i = 0; i < channels_.size(); ++i) {
            const size_t got = channels_[i].ReadRow(row_);
            isThere = isThere || got != 0;
            isDamaged_ = isDamaged_ || got < header_.width;
            std::fill(row_.begin() + static_cast<ptrdiff_t>(got * header_.sampleBytes), row_.end(),
                      uint8_t{0});
            PutChannel(i, row);
        }
        hasPixels_ = hasPixels_ || isThere;
        return isThere || (hasPixels_ && header_.isEncoded) ? header_.width : 0;
    }

  private:
    void PutChannel(size_t channel, uint8_t* row) const {
        const size_t samples = channels_.size();
        const size_t place = samples >= 3 && channel < 3 ? 2 - channel : channel;
        if (samples < 3 || header_.sampleBytes == 1) {
            for (size_t x = 0; x < header_.width; ++x)
                row[x * samples + place] =
                    header_.sampleBytes == 1
                        ? row_[x]
                        : static_cast<uint8_t>(Scaled(Big16(&row_[2 * x]), 0xFFFF));
            return;
        }
        for (size_t x = 0; x < header_.width; ++x) {
            row[(x * samples + place) * 2] = row_[2 * x];
            row[(x * samples + place) * 2 + 1] = row_[2 * x + 1];
        }
    }

    const SgiHeader header_;
    std::vector<Channel> channels_;
    std::vector<uint8_t> row_;  // of one channel
    bool hasPixels_ = false;
};

bool IsSgi(std::span<const uint8_t> header) {
    return header.size() >= 12 && Big16(header.data()) == kSignature && header[2] <= 1 &&
           (header[3] == 1 || header[3] == 2) && Big16(&header[4]) >= 1 && Big16(&header[4]) <= 3;
}

Result OpenSgi(dib::ByteSource& source, codec::Progress& progress,
               std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, kHeaderSize> bytes{};
    if (source.ReadAt(0, bytes).value_or(0) != bytes.size()) return Result::kBrokenData;
    const uint16_t dimensions = Big16(&bytes[4]);
    const SgiHeader header{.isEncoded = bytes[2] == 1,
                           .sampleBytes = bytes[3],
                           .width = Big16(&bytes[6]),
                           .height = dimensions >= 2 ? Big16(&bytes[8]) : 1u,
                           .channels = dimensions >= 3 ? Big16(&bytes[10]) : 1u};
    if (Big32(&bytes[kColorMapOffset]) != 0) {
        return NotRead(progress, L"カラーマップを使うSGI画像には対応していません");
    }
    if (header.width == 0 || header.height == 0 || header.channels == 0) {
        return Result::kBrokenData;
    }
    reader = std::make_unique<SgiReader>(source, header);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kSgi{L"SGI", IsSgi, OpenSgi};

}  // namespace tessary::misc
