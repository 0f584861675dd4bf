#include "helpers/dcpng/png_writer.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <vector>

#include "helpers/dcpng/png_rows.h"
#include "helpers/saving/percent_reporter.h"

namespace tessary::dcpng {
namespace {

using saving::SaveResult;

constexpr int kNoCompression = 0;
constexpr int kBestCompression = 9;
constexpr size_t kChunkSize = 64u << 10;  // bytes of compressed pixels in one IDAT chunk

int ColorType(PngKind kind) {
    switch (kind) {
        case PngKind::kGrey:
            return PNG_COLOR_TYPE_GRAY;
        case PngKind::kPalette:
            return PNG_COLOR_TYPE_PALETTE;
        case PngKind::kRgba:
            return PNG_COLOR_TYPE_RGB_ALPHA;
        default:
            return PNG_COLOR_TYPE_RGB;
    }
}

// libpng at work on one file. It leaves its functions by longjmp when something fails, over
// everything up to Run: what runs inside Run calls libpng or packs rows, and owns nothing.
class PngSession {
  public:
    explicit PngSession(files::ByteSink& sink) : sink_(sink) {
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
        if (png_ == nullptr) return;
        info_ = png_create_info_struct(png_);
        png_set_write_fn(png_, this, Write, Flush);
    }
    PngSession(const PngSession&) = delete;
    PngSession& operator=(const PngSession&) = delete;
    ~PngSession() { png_destroy_write_struct(&png_, &info_); }

    SaveResult Save(const dib::DibView& picture, const saving::PngSaveOptions& options,
                    const dib::Progress& progress);

  private:
    // False when libpng gave up.
    template <typename Steps>
    bool Run(const Steps& steps) {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        steps();
        return true;
    }

    void WriteHeader(const dib::DibView& picture, const PngRows& rows,
                     const saving::PngSaveOptions& options);
    // False when `progress` asks to stop.
    bool WriteRows(const dib::DibView& picture, const PngRows& rows, std::span<uint8_t> row,
                   saving::PercentReporter& progress);

    [[noreturn]] static void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void OnWarning(png_structp, png_const_charp) {}
    static void Write(png_structp png, png_bytep bytes, png_size_t size) {
        auto* session = static_cast<PngSession*>(png_get_io_ptr(png));
        session->refused_ = !session->sink_.Write({bytes, size});
        if (session->refused_) png_error(png, "");
    }
    static void Flush(png_structp) {}

    files::ByteSink& sink_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    bool refused_ = false;  // by the sink
};

void PngSession::WriteHeader(const dib::DibView& picture, const PngRows& rows,
                             const saving::PngSaveOptions& options) {
    const auto width = static_cast<png_uint_32>(picture.Width());
    const auto height = static_cast<png_uint_32>(picture.Height());
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    const int level = std::clamp<int>(options.quality, kNoCompression, kBestCompression);
    png_set_compression_level(png_, level);
    png_set_compression_buffer_size(png_, kChunkSize);
    if (level == kNoCompression) png_set_filter(png_, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);

    png_set_IHDR(png_, info_, width, height, rows.BitDepth(), ColorType(rows.Kind()),
                 options.interlace != 0 ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    if (rows.Kind() == PngKind::kPalette) {
        png_color colors[dib::kMaxPaletteEntries];
        int count = 0;
        for (const dib::PaletteEntry& entry : rows.Palette())
            colors[count++] = {entry.red, entry.green, entry.blue};
        png_set_PLTE(png_, info_, colors, count);
    }
    const dib::BitmapInfoHeader& header = picture.Header();
    if (header.xPelsPerMeter > 0 && header.yPelsPerMeter > 0) {
        png_set_pHYs(png_, info_, static_cast<png_uint_32>(header.xPelsPerMeter),
                     static_cast<png_uint_32>(header.yPelsPerMeter), PNG_RESOLUTION_METER);
    }
    png_write_info(png_, info_);
}

bool PngSession::WriteRows(const dib::DibView& picture, const PngRows& rows, std::span<uint8_t> row,
                           saving::PercentReporter& progress) {
    const int passes = png_set_interlace_handling(png_);
    const auto height = static_cast<uint64_t>(picture.Height());
    uint64_t done = 0;
    for (int pass = 0; pass < passes; ++pass) {
        for (int32_t y = 0; y < picture.Height(); ++y) {
            // Of the other rows libpng only wants to be told that they are over.
            if (passes == 1 || PNG_ROW_IN_INTERLACE_PASS(y, pass)) rows.Pack(y, row);
            png_write_row(png_, row.data());
            if (!progress.Report(++done, height * static_cast<uint64_t>(passes))) return false;
        }
    }
    return true;
}

SaveResult PngSession::Save(const dib::DibView& picture, const saving::PngSaveOptions& options,
                            const dib::Progress& progress) {
    if (info_ == nullptr) return SaveResult::kOutOfMemory;
    const PngRows rows(picture);
    std::vector<uint8_t> row(rows.RowBytes());
    saving::PercentReporter reporter(progress);
    bool goesOn = true;
    const bool complete = Run([&] {
        WriteHeader(picture, rows, options);
        goesOn = WriteRows(picture, rows, row, reporter);
        if (goesOn) png_write_end(png_, info_);
    });
    if (complete) return goesOn ? SaveResult::kSaved : SaveResult::kCancelled;
    return refused_ ? SaveResult::kNotWritten : SaveResult::kOutOfMemory;
}

}  // namespace

SaveResult WritePng(const dib::DibView& picture, const saving::PngSaveOptions& options,
                    files::ByteSink& sink, const dib::Progress& progress) {
    return PngSession(sink).Save(picture, options, progress);
}

}  // namespace tessary::dcpng
