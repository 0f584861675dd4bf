#include "plugins/iftessgif/gif_decoder.h"

#include <algorithm>
#include <array>

#include "plugins/common/palette.h"
#include "plugins/iftessgif/gif_animation.h"
#include "plugins/iftessgif/gif_pixels.h"

namespace tessary::gif {
namespace {

using codec::Canvas;
using codec::PictureForm;
using codec::PictureTarget;
using codec::Progress;
using codec::Result;

constexpr std::array<uint8_t, 4> kStart{'G', 'I', 'F', '8'};

bool IsGif(std::span<const uint8_t> header) {
    return header.size() >= kStart.size() &&
           std::equal(kStart.begin(), kStart.end(), header.begin());
}

// The head of a file with its first frame.
Result ReadHead(dib::ByteSource& source, GifFile& file) {
    std::array<uint8_t, kStart.size()> start{};
    if (!source.ReadAt(0, start)) return Result::kReadError;
    if (!IsGif(start)) return Result::kUnknownFormat;
    file = ReadGif(source, 1);
    if (file.hasFailed) return Result::kReadError;
    if (file.frames.empty() || file.width == 0 || file.height == 0) return Result::kBrokenData;
    return Result::kSuccess;
}

bool FillsScreen(const GifFile& file) {
    const GifFrame& frame = file.frames[0];
    return frame.left == 0 && frame.top == 0 && frame.width == file.width &&
           frame.height == file.height;
}

// Windows knows no 2-bit pictures.
PictureForm TableForm(const GifFile& file) {
    const GifFrame& frame = file.frames[0];
    const unsigned bits = frame.HasTable()  ? frame.TableBits()
                          : file.HasTable() ? file.TableBits()
                                            : 8;
    PictureForm form{.width = file.width, .height = file.height};
    form.bitCount = bits == 1 ? 1 : bits <= 4 ? 4 : 8;
    return form;
}

// Writes indexes into a row of so many bits a pixel; what the table does not have is its first.
void PackRow(std::span<const uint8_t> indexes, uint8_t* row, unsigned bits) {
    const unsigned most = (1u << bits) - 1;
    for (size_t x = 0; x < indexes.size(); ++x) {
        const unsigned index = indexes[x] <= most ? indexes[x] : 0;
        const size_t bit = x * bits;
        row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | index << (8 - bits - bit % 8));
    }
}

// Whether any pixel shows what is below.
bool HasClearPixels(dib::ByteSource& source, const GifFile& file, Progress& progress) {
    const GifFrame& frame = file.frames[0];
    if (frame.clearIndex < 0) return false;
    GifPixels pixels(source, file, frame);
    bool hasClear = pixels.Open() != Result::kSuccess;
    const Result result =
        hasClear ? Result::kSuccess
                 : pixels.Read(frame.height, progress, [&](uint32_t, std::span<const uint8_t> row) {
                       hasClear = hasClear || std::ranges::find(row, frame.clearIndex) != row.end();
                   });
    // What is missing is clear, too.
    return hasClear || result != Result::kSuccess;
}

Result DecodeWithTable(dib::ByteSource& source, const GifFile& file, PictureTarget& target,
                       Progress& progress) {
    const GifFrame& frame = file.frames[0];
    GifPixels pixels(source, file, frame);
    if (const Result opened = pixels.Open(); opened != Result::kSuccess) return opened;
    GifPixels::Colors table = pixels.Table();
    if (frame.clearIndex >= 0) table[static_cast<size_t>(frame.clearIndex)] = codec::kWhite;
    const PictureForm form = TableForm(file);
    codec::PictureRows rows;
    const Result created = CreatePicture(target, form, table, source.Size(), rows);
    if (created != Result::kSuccess) return created;
    bool hasPixels = false;
    const Result result =
        pixels.Read(frame.height, progress, [&](uint32_t y, std::span<const uint8_t> indexes) {
            hasPixels = hasPixels || !indexes.empty();
            PackRow(indexes, rows.Row(y), form.bitCount);
        });
    if (result != Result::kBrokenData || !hasPixels) return result;
    progress.Tell(codec::Condition::kDamaged, kDamagedText);
    return Result::kSuccess;
}

// Whether the file ends in a frame behind the first, before its last pixel. Files that end as they
// should cost nothing.
bool LacksPixelsBehind(dib::ByteSource& source) {
    constexpr std::array<uint8_t, 2> kEnd{0, 0x3B};
    std::array<uint8_t, kEnd.size()> end{};
    if (source.ReadAt(source.Size() - end.size(), end) == end.size() && end == kEnd) return false;
    const GifFile file = ReadGif(source);
    if (file.hasFailed || !file.open || file.frames.empty()) return false;
    const GifFrame& frame = *file.open;
    if (frame.position == file.frames[0].position ||
        !codec::IsPlausibleSize(uint64_t{frame.width} * frame.height, source.Size())) {
        return false;
    }
    GifPixels pixels(source, file, frame);
    const Result opened = pixels.Open();
    Progress nobody;
    return Result::kBrokenData ==
           (opened == Result::kSuccess
                ? pixels.Read(frame.height, nobody, [](uint32_t, std::span<const uint8_t>) {})
                : opened);
}

// The transparent picture as a frame on its screen.
Result DecodeOnScreen(dib::ByteSource& source, const GifFile& file, PictureTarget& target,
                      Progress& progress) {
    const uint64_t bytes = uint64_t{file.width} * file.height * Canvas::kPixelBytes;
    if (!codec::IsPlausibleSize(bytes, source.Size())) return Result::kBrokenData;
    Canvas canvas(file.width, file.height);
    const Result drawn = DrawFrame(source, file, file.frames[0], canvas, progress);
    if (drawn != Result::kSuccess) return drawn;
    return canvas.HandOut(target, source.Size());
}

}  // namespace

bool GifDecoder::IsSupported(std::span<const uint8_t> header) const {
    return IsGif(header);
}

Result GifDecoder::ReadForm(dib::ByteSource& source, PictureForm& form) const {
    GifFile file;
    const Result result = ReadHead(source, file);
    if (result != Result::kSuccess) return result;
    form = TableForm(file);
    if (!FillsScreen(file)) form.bitCount = 24;
    return result;
}

Result GifDecoder::Decode(dib::ByteSource& source, PictureTarget& target,
                          Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    GifFile file;
    Result result = ReadHead(source, file);
    if (result == Result::kSuccess) {
        const bool keepsTable =
            FillsScreen(file) && !(target.TakesAlpha() && HasClearPixels(source, file, progress));
        result = keepsTable ? DecodeWithTable(source, file, target, progress)
                            : DecodeOnScreen(source, file, target, progress);
    }
    if (result == Result::kBrokenData ||
        (result == Result::kSuccess && LacksPixelsBehind(source))) {
        progress.Tell(codec::Condition::kDamaged, kDamagedText);
    }
    if (result != Result::kSuccess) return result;
    return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

std::unique_ptr<codec::FrameReader> GifDecoder::OpenFrames(dib::ByteSource& source) const {
    GifFile file;
    if (ReadHead(source, file) != Result::kSuccess) return nullptr;
    const uint64_t bytes = uint64_t{file.width} * file.height * Canvas::kPixelBytes;
    if (!codec::IsPlausibleSize(bytes, source.Size())) return nullptr;
    file = ReadGif(source);
    return file.frames.size() < 2 ? nullptr : std::make_unique<GifAnimation>(std::move(file));
}

}  // namespace tessary::gif
