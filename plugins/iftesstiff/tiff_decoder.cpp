#include "plugins/iftesstiff/tiff_decoder.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "plugins/common/color_picture.h"
#include "plugins/iftesstiff/tiff_colors.h"
#include "plugins/iftesstiff/tiff_file.h"
#include "plugins/iftesstiff/tiff_form.h"
#include "plugins/iftesstiff/tiff_library_colors.h"
#include "plugins/iftesstiff/tiff_pages.h"
#include "plugins/iftesstiff/tiff_rows.h"

namespace tessary::tiff {
namespace {

using codec::OrientedRows;
using codec::PictureForm;
using codec::PictureTarget;
using codec::Progress;
using codec::Result;

constexpr wchar_t kDamagedText[] = L"TIFFデータが壊れているか、途中で切れています";

// Byte order and number, of the usual form and the one of large files.
bool IsTiff(std::span<const uint8_t> header) {
    constexpr std::array<std::array<uint8_t, 4>, 4> kStarts{
        {{'I', 'I', 42, 0}, {'M', 'M', 0, 42}, {'I', 'I', 43, 0}, {'M', 'M', 0, 43}}};
    return header.size() >= 8 && std::ranges::any_of(kStarts, [&](const auto& start) {
               return std::equal(start.begin(), start.end(), header.begin());
           });
}

Result CheckStart(dib::ByteSource& source) {
    std::array<uint8_t, 8> start{};
    const auto got = source.ReadAt(0, start);
    if (!got) return Result::kReadError;
    return IsTiff(std::span(start).first(*got)) ? Result::kSuccess : Result::kUnknownFormat;
}

// Why a file or a directory cannot be had.
Result Failure(const TiffFile& file) {
    return file.HasFailed() ? Result::kReadError : Result::kBrokenData;
}

PictureForm FormOf(const TiffColors& colors) {
    PictureForm shown = codec::FormOf(colors.Picture());
    if (colors.HasTable()) shown.bitCount = colors.TableBits();
    return shown;
}

// Pictures with a table, and all others.
Result MakePicture(PictureTarget& target, const TiffForm& form, const TiffColors& colors,
                   uint64_t sourceSize, std::optional<OrientedRows>& rows) {
    if (!colors.HasTable()) {
        return CreateColorPicture(target, colors.Picture(), sourceSize, rows);
    }
    codec::PictureRows made;
    const Result created = CreatePicture(target, FormOf(colors), colors.Table(), sourceSize, made);
    if (created != Result::kSuccess) return created;
    rows.emplace(codec::RowPlaces{made, form.width, form.height,
                                  std::max(colors.TableBits() / 8U, 1U), form.orientation});
    return Result::kSuccess;
}

Result ReadRows(const TiffFile& file, const TiffForm& form, TiffColors& colors, OrientedRows& out,
                Progress& progress, bool& isSound) {
    TiffRows rows(file, form);
    if (const Result opened = rows.Open(); opened != Result::kSuccess) return opened;
    bool hasAny = false;
    for (uint32_t y = 0; y < form.height; ++y) {
        if (!progress.Report(y, form.height)) return Result::kAborted;
        const bool isRead = rows.Read(y);
        hasAny = hasAny || isRead;
        isSound = isSound && isRead;
        colors.PutRow(rows, out.RowBuffer(y));
        out.RowDone(y);
    }
    return hasAny ? Result::kSuccess : Failure(file);
}

// Decodes the directory that the file is at.
Result DecodePage(const TiffFile& file, uint64_t sourceSize, PictureTarget& target,
                  Progress& progress) {
    TiffForm form;
    const wchar_t* reason = nullptr;
    Result result = ReadForm(file, form, reason);
    if (reason != nullptr) progress.Tell(codec::Condition::kKindNotRead, reason);
    if (result != Result::kSuccess) return result;
    TiffColors colors(form);
    std::optional<OrientedRows> rows;
    result = MakePicture(target, form, colors, sourceSize, rows);
    if (result != Result::kSuccess) return result;
    bool isSound = true;
    result = form.model == Model::kAsLibrary
                 ? ReadLibraryColors(file, form, *rows, progress, isSound)
                 : ReadRows(file, form, colors, *rows, progress, isSound);
    if (result != Result::kSuccess) return result;
    if (file.HasFailed()) return Result::kReadError;
    rows->Finish();
    if (!isSound) progress.Tell(codec::Condition::kDamaged, kDamagedText);
    return progress.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

class Pages final : public codec::FrameReader {
  public:
    explicit Pages(std::vector<uint64_t> places) : places_(std::move(places)) {}

    codec::FrameSet Frames() const override {
        return {codec::FrameKind::kPages, static_cast<uint32_t>(places_.size())};
    }

    Result Decode(dib::ByteSource& source, uint32_t index, PictureTarget& target,
                  Progress& progress, uint32_t& duration) override {
        duration = 0;
        const TiffFile file(source);
        if (!file.IsOpen() || TIFFSetSubDirectory(file.Handle(), places_[index]) == 0) {
            return Failure(file);
        }
        return DecodePage(file, source.Size(), target, progress);
    }

  private:
    std::vector<uint64_t> places_;  // of the directories in the file
};

// At the first page.
Result OpenFirst(const TiffFile& file) {
    if (!file.IsOpen()) return Failure(file);
    const std::vector<uint64_t> pages = PagesOf(file, 1);
    return TIFFSetSubDirectory(file.Handle(), pages[0]) == 0 ? Failure(file) : Result::kSuccess;
}

}  // namespace

bool TiffDecoder::IsSupported(std::span<const uint8_t> header) const {
    return IsTiff(header);
}

Result TiffDecoder::ReadForm(dib::ByteSource& source, PictureForm& form) const {
    if (const Result known = CheckStart(source); known != Result::kSuccess) return known;
    const TiffFile file(source);
    if (const Result opened = OpenFirst(file); opened != Result::kSuccess) return opened;
    TiffForm stored;
    const wchar_t* reason = nullptr;
    const Result result = tiff::ReadForm(file, stored, reason);
    if (result == Result::kSuccess) form = FormOf(TiffColors(stored));
    return result;
}

Result TiffDecoder::Decode(dib::ByteSource& source, PictureTarget& target,
                           Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    if (const Result known = CheckStart(source); known != Result::kSuccess) return known;
    const TiffFile file(source);
    if (const Result opened = OpenFirst(file); opened != Result::kSuccess) return opened;
    return DecodePage(file, source.Size(), target, progress);
}

std::unique_ptr<codec::FrameReader> TiffDecoder::OpenFrames(dib::ByteSource& source) const {
    if (CheckStart(source) != Result::kSuccess) return nullptr;
    const TiffFile file(source);
    if (!file.IsOpen()) return nullptr;
    std::vector<uint64_t> pages = PagesOf(file);
    return pages.size() < 2 ? nullptr : std::make_unique<Pages>(std::move(pages));
}

}  // namespace tessary::tiff
