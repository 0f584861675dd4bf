#include "helpers/dcpng/png_writer.h"

#include <png.h>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <memory>
#include <new>
#include <vector>

#include "helpers/dcpng/png_rows.h"
#include "helpers/dcpng/strip_maker.h"
#include "helpers/dcpng/strip_team.h"
#include "helpers/saving/percent_reporter.h"

namespace tessary::dcpng {
namespace {

using saving::SaveResult;

constexpr int kNoCompression = 0;
constexpr int kBestCompression = 9;
constexpr size_t kMostRowBytes = 1u << 30;

// The two bytes before the deflate stream (RFC 1950): a window of 32 KB, and how hard was tried.
constexpr std::array<uint8_t, 2> ZlibHeader(int level) {
    constexpr uint8_t kDeflate32K = 0x78;
    return {kDeflate32K, static_cast<uint8_t>(level < 2   ? 0x01
                                              : level < 6 ? 0x5E
                                              : level < 7 ? 0x9C
                                                          : 0xDA)};
}

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

// libpng writes the chunks of one file; the pixels in them are made by a StripTeam. libpng leaves
// its functions by longjmp when something fails, over everything up to Run: what runs inside Run
// calls libpng, and owns nothing.
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
                    const dib::Progress& progress, const saving::FileExtras& extras);

  private:
    // False when libpng gave up.
    template <typename Steps>
    bool Run(const Steps& steps) {
        if (setjmp(png_jmpbuf(png_)) != 0) return false;
        steps();
        return true;
    }

    void WriteHeader(const dib::DibView& picture, const PngRows& rows,
                     std::span<const uint8_t> alphas, const saving::FileExtras& extras,
                     bool interlace);
    SaveResult WritePixels(const PngRows& rows, const StripLayout& layout, int level,
                           const dib::Progress& progress);
    // The pieces become one chunk.
    template <size_t kPieces>
    void WritePixelChunk(const std::array<std::span<const uint8_t>, kPieces>& pieces);
    SaveResult GaveUp() const {
        return refused_ ? SaveResult::kNotWritten : SaveResult::kOutOfMemory;
    }

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
                             std::span<const uint8_t> alphas, const saving::FileExtras& extras,
                             bool interlace) {
    const auto width = static_cast<png_uint_32>(picture.Width());
    const auto height = static_cast<png_uint_32>(picture.Height());
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png_, info_, width, height, rows.BitDepth(), ColorType(rows.Kind()),
                 interlace ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE,
                 PNG_FILTER_TYPE_BASE);
    if (rows.Kind() == PngKind::kPalette) {
        png_color colors[dib::kMaxPaletteEntries];
        int count = 0;
        for (const dib::PaletteEntry& entry : rows.Palette())
            colors[count++] = {entry.red, entry.green, entry.blue};
        png_set_PLTE(png_, info_, colors, count);
        if (!alphas.empty()) {
            png_set_tRNS(png_, info_, alphas.data(), static_cast<int>(alphas.size()), nullptr);
        }
    }
    const dib::BitmapInfoHeader& header = picture.Header();
    if (header.xPelsPerMeter > 0 && header.yPelsPerMeter > 0) {
        png_set_pHYs(png_, info_, static_cast<png_uint_32>(header.xPelsPerMeter),
                     static_cast<png_uint_32>(header.yPelsPerMeter), PNG_RESOLUTION_METER);
    }
    const auto profile = extras.profile.Span();
    if (!profile.empty()) {
        png_set_iCCP(png_, info_, "ICC Profile", PNG_COMPRESSION_TYPE_BASE, profile.data(),
                     static_cast<png_uint_32>(profile.size()));
    }
    if (const auto exif = extras.exif.Span(); !exif.empty()) {
        if (profile.empty()) png_set_sRGB(png_, info_, PNG_sRGB_INTENT_PERCEPTUAL);
        png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(exif.size()),
                       const_cast<png_bytep>(exif.data()));  // it takes a copy
    }
    png_write_info(png_, info_);
}

template <size_t kPieces>
void PngSession::WritePixelChunk(const std::array<std::span<const uint8_t>, kPieces>& pieces) {
    constexpr png_byte kName[] = {'I', 'D', 'A', 'T'};
    size_t size = 0;
    for (const auto& piece : pieces)
        size += piece.size();
    png_write_chunk_start(png_, kName, static_cast<png_uint_32>(size));
    for (const auto& piece : pieces)
        png_write_chunk_data(png_, piece.data(), piece.size());
    png_write_chunk_end(png_);
}

SaveResult PngSession::WritePixels(const PngRows& rows, const StripLayout& layout, int level,
                                   const dib::Progress& progress) {
    const auto header = ZlibHeader(level);
    uLong adler = adler32(0, nullptr, 0);
    std::array<uint8_t, 4> trailer;
    saving::PercentReporter reporter(progress);
    StripTeam team(layout.Count(), [&]() -> StripTeam::Make {
        const auto maker = std::make_shared<StripMaker>(rows, layout, level);
        return [maker](size_t strip, DeflatedStrip& to) { maker->Make(strip, to); };
    });
    for (size_t i = 0; i < layout.Count(); ++i) {
        const DeflatedStrip& strip = team.Take();
        adler = adler32_combine(adler, strip.adler, static_cast<z_off_t>(strip.size));
        png_save_uint_32(trailer.data(), static_cast<png_uint_32>(adler));
        const bool isLast = i + 1 == layout.Count();
        const std::array<std::span<const uint8_t>, 3> pieces = {
            std::span(header).first(i == 0 ? header.size() : 0), strip.bytes,
            std::span(trailer).first(isLast ? trailer.size() : 0)};
        if (!Run([&] { WritePixelChunk(pieces); })) return GaveUp();
        if (!reporter.Report(i + 1, layout.Count())) return SaveResult::kCancelled;
    }
    return SaveResult::kSaved;
}

SaveResult PngSession::Save(const dib::DibView& picture, const saving::PngSaveOptions& options,
                            const dib::Progress& progress, const saving::FileExtras& extras) {
    if (info_ == nullptr) return SaveResult::kOutOfMemory;
    const PngRows rows(picture);
    if (rows.RowBytes() > kMostRowBytes) return SaveResult::kTooLarge;
    const bool interlace = options.interlace != 0;
    const int level = std::clamp<int>(options.quality, kNoCompression, kBestCompression);
    const StripLayout layout(PassesOf(static_cast<uint32_t>(picture.Width()),
                                      static_cast<uint32_t>(picture.Height()), rows.BitsPerPixel(),
                                      interlace));
    const std::vector<uint8_t> alphas = rows.Alphas();
    if (!Run([&] { WriteHeader(picture, rows, alphas, extras, interlace); })) return GaveUp();
    const SaveResult result = WritePixels(rows, layout, level, progress);
    if (result != SaveResult::kSaved) return result;
    constexpr png_byte kEnd[] = {'I', 'E', 'N', 'D'};
    return Run([&] { png_write_chunk(png_, kEnd, nullptr, 0); }) ? SaveResult::kSaved : GaveUp();
}

}  // namespace

SaveResult WritePng(const dib::DibView& picture, const saving::PngSaveOptions& options,
                    files::ByteSink& sink, const dib::Progress& progress,
                    const saving::FileExtras& extras) {
    try {
        return PngSession(sink).Save(picture, options, progress, extras);
    } catch (const std::bad_alloc&) {
        return SaveResult::kOutOfMemory;
    }
}

}  // namespace tessary::dcpng
