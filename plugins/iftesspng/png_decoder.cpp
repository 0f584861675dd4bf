#include "plugins/iftesspng/png_decoder.h"

#include <algorithm>
#include <array>

#include "plugins/iftesspng/apng_animation.h"
#include "plugins/iftesspng/png_reader.h"

namespace tessary::png {
namespace {

using codec::Result;

// The signature, the length of the first chunk and its name, which is always the same.
constexpr std::array<uint8_t, 16> kStart{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                         0,    0,   0,   13,  'I',  'H',  'D',  'R'};

}  // namespace

bool PngDecoder::IsSupported(std::span<const uint8_t> header) const {
    return header.size() >= kStart.size() &&
           std::equal(kStart.begin(), kStart.end(), header.begin());
}

Result PngDecoder::ReadForm(dib::ByteSource& source, codec::PictureForm& form) const {
    codec::Progress nobody;
    PngReader reader(source, nobody, large_);
    const Result result = reader.ReadHeader();
    if (result == Result::kSuccess) form = reader.Form();
    return result;
}

Result PngDecoder::Decode(dib::ByteSource& source, codec::PictureTarget& target,
                          codec::Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    PngReader reader(source, progress, large_);
    if (target.TakesAlpha()) reader.KeepAlpha();
    if (const Result result = reader.ReadHeader(); result != Result::kSuccess) return result;
    codec::PictureForm form = reader.Form();
    form.profile = reader.HandOnProfile(target);
    codec::PictureRows rows;
    const Result created = CreatePicture(target, form, reader.Palette(), source.Size(), rows);
    if (created != Result::kSuccess) return created;
    codec::OrientedRows oriented({rows, reader.StoredWidth(), reader.StoredHeight(),
                                  form.bitCount / 8u, reader.Orientation()},
                                 reader.Conversion());
    const Result result = reader.DecodeRows(oriented);
    if (result != Result::kSuccess || progress.Told().condition != codec::Condition::kNone) {
        return result;
    }
    // The picture is there; a medium that fails now fails again when a frame is asked for.
    const std::optional<ApngFile> file = ReadApng(source);
    const bool isStopped = file && TellDamage(source, *file, progress) == Result::kAborted;
    return isStopped ? Result::kAborted : result;
}

std::unique_ptr<codec::FrameReader> PngDecoder::OpenFrames(dib::ByteSource& source) const {
    std::optional<ApngFile> file = ReadApng(source);
    if (!file) return nullptr;
    const uint64_t bytes = uint64_t{file->width} * file->height * codec::Canvas::kPixelBytes;
    if (!codec::IsPlausibleSize(bytes, source.Size())) return nullptr;
    return std::make_unique<ApngAnimation>(*std::move(file));
}

}  // namespace tessary::png
