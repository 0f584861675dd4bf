#include "helpers/dcjpeg/jpeg_writer.h"

#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <vector>

#include "helpers/dcjpeg/jpeg_density.h"
#include "helpers/dcjpeg/jpeg_rows.h"
#include "helpers/saving/percent_reporter.h"

namespace tessary::dcjpeg {
namespace {

using saving::SaveResult;

constexpr size_t kBufferSize = 64u << 10;  // bytes handed to the sink at once
constexpr int32_t kRowsAtOnce = 16;        // what the library works on with halved colours

// The name in front of EXIF data, and what one marker holds.
constexpr std::array<uint8_t, 6> kExifName{'E', 'x', 'i', 'f', 0, 0};
constexpr size_t kMostExif = 0xFFFF - 2 - kExifName.size();

// libjpeg at work on one file. It is left by longjmp when something fails, over everything up to
// Run: what runs inside Run calls libjpeg or makes rows, and owns nothing.
class JpegSession {
  public:
    JpegSession(files::ByteSink& sink, const dib::Progress& progress)
        : sink_(sink), progress_(progress), buffer_(kBufferSize) {
        compress_.err = jpeg_std_error(&errors_);
        compress_.client_data = this;
        // Of all that the library can complain about, only a want of memory is left here.
        errors_.error_exit = [](j_common_ptr compress) {
            Of(compress).GiveUp(SaveResult::kOutOfMemory);
        };
        errors_.emit_message = [](j_common_ptr, int) {};
        destination_.init_destination = [](j_compress_ptr compress) { Of(compress).Rewind(); };
        destination_.empty_output_buffer = [](j_compress_ptr compress) -> boolean {
            Of(compress).WriteBuffer(kBufferSize);
            return TRUE;
        };
        destination_.term_destination = [](j_compress_ptr compress) {
            JpegSession& session = Of(compress);
            session.WriteBuffer(kBufferSize - session.destination_.free_in_buffer);
        };
        monitor_.progress_monitor = [](j_common_ptr compress) { Of(compress).Report(); };
    }
    JpegSession(const JpegSession&) = delete;
    JpegSession& operator=(const JpegSession&) = delete;
    ~JpegSession() { jpeg_destroy_compress(&compress_); }

    SaveResult Save(const dib::DibView& picture, const saving::JpegSaveOptions& options,
                    const saving::FileExtras& extras);

  private:
    template <typename Info>
    static JpegSession& Of(Info* compress) {
        return *static_cast<JpegSession*>(compress->client_data);
    }
    [[noreturn]] void GiveUp(SaveResult reason) {
        result_ = reason;
        longjmp(escape_, 1);
    }

    template <typename Steps>
    void Run(const Steps& steps) {
        if (setjmp(escape_) == 0) steps();
    }

    void Start(const dib::DibView& picture, const JpegRows& rows,
               const saving::JpegSaveOptions& options);
    void WriteExif(std::span<const uint8_t> exif);
    void WriteRows(const dib::DibView& picture, const JpegRows& rows, std::span<uint8_t> scratch);

    void Rewind() {
        destination_.next_output_byte = buffer_.data();
        destination_.free_in_buffer = kBufferSize;
    }
    void WriteBuffer(size_t size) {
        if (!sink_.Write(std::span(buffer_).first(size))) GiveUp(SaveResult::kNotWritten);
        Rewind();
    }
    void Report() {
        const auto limit = static_cast<uint64_t>(monitor_.pass_limit);
        const auto done = static_cast<uint64_t>(monitor_.completed_passes) * limit +
                          static_cast<uint64_t>(monitor_.pass_counter);
        const auto total = static_cast<uint64_t>(monitor_.total_passes) * limit;
        if (total != 0 && !progress_.Report(done, total)) GiveUp(SaveResult::kCancelled);
    }

    files::ByteSink& sink_;
    saving::PercentReporter progress_;
    std::vector<uint8_t> buffer_;
    SaveResult result_ = SaveResult::kSaved;
    jpeg_compress_struct compress_{};
    jpeg_error_mgr errors_{};
    jpeg_destination_mgr destination_{};
    jpeg_progress_mgr monitor_{};
    jmp_buf escape_{};
};

void JpegSession::Start(const dib::DibView& picture, const JpegRows& rows,
                        const saving::JpegSaveOptions& options) {
    jpeg_create_compress(&compress_);
    compress_.dest = &destination_;
    compress_.progress = &monitor_;
    compress_.image_width = static_cast<JDIMENSION>(picture.Width());
    compress_.image_height = static_cast<JDIMENSION>(picture.Height());
    switch (rows.Pixels()) {
        case JpegPixels::kGrey:
            compress_.input_components = 1;
            compress_.in_color_space = JCS_GRAYSCALE;
            break;
        case JpegPixels::kBgr:
            compress_.input_components = 3;
            compress_.in_color_space = JCS_EXT_BGR;
            break;
        case JpegPixels::kBgrx:
            compress_.input_components = 4;
            compress_.in_color_space = JCS_EXT_BGRX;
            break;
    }
    jpeg_set_defaults(&compress_);
    jpeg_set_quality(&compress_, options.quality, TRUE);  // brings it into its scale
    if (options.quality >= kFullColorQuality) {
        compress_.comp_info[0].h_samp_factor = 1;
        compress_.comp_info[0].v_samp_factor = 1;
    }
    compress_.optimize_coding = options.optimizedHuffman != 0;
    if (options.progressive != 0) jpeg_simple_progression(&compress_);
    if (const auto density = DensityOf(picture.Header())) {
        compress_.density_unit = density->unit;
        compress_.X_density = density->x;
        compress_.Y_density = density->y;
    }
    jpeg_start_compress(&compress_, TRUE);
}

void JpegSession::WriteExif(std::span<const uint8_t> exif) {
    jpeg_write_m_header(&compress_, JPEG_APP0 + 1,
                        static_cast<unsigned>(kExifName.size() + exif.size()));
    for (const uint8_t byte : kExifName)
        jpeg_write_m_byte(&compress_, byte);
    for (const uint8_t byte : exif)
        jpeg_write_m_byte(&compress_, byte);
}

void JpegSession::WriteRows(const dib::DibView& picture, const JpegRows& rows,
                            std::span<uint8_t> scratch) {
    for (int32_t top = 0; top < picture.Height(); top += kRowsAtOnce) {
        std::array<JSAMPROW, kRowsAtOnce> lines;
        const int32_t count = std::min(kRowsAtOnce, picture.Height() - top);
        for (int32_t i = 0; i < count; ++i) {
            const auto own =
                scratch.subspan(static_cast<size_t>(i) * rows.ScratchBytes(), rows.ScratchBytes());
            // The library only reads them.
            lines[static_cast<size_t>(i)] = const_cast<JSAMPROW>(rows.Row(top + i, own));
        }
        jpeg_write_scanlines(&compress_, lines.data(), static_cast<JDIMENSION>(count));
    }
}

SaveResult JpegSession::Save(const dib::DibView& picture, const saving::JpegSaveOptions& options,
                             const saving::FileExtras& extras) {
    const auto exif = extras.exif.Span();
    const auto profile = extras.profile.Span();
    if (std::max(picture.Width(), picture.Height()) > JPEG_MAX_DIMENSION) {
        return SaveResult::kTooLarge;
    }
    const JpegRows rows(picture);
    std::vector<uint8_t> scratch(rows.ScratchBytes() * kRowsAtOnce);
    if (exif.size() > kMostExif) return SaveResult::kTooLarge;
    Run([&] {
        Start(picture, rows, options);
        if (!exif.empty()) WriteExif(exif);
        if (!profile.empty()) {
            jpeg_write_icc_profile(&compress_, profile.data(),
                                   static_cast<unsigned>(profile.size()));
        }
        WriteRows(picture, rows, scratch);
        jpeg_finish_compress(&compress_);
        if (!progress_.Report(1, 1)) GiveUp(SaveResult::kCancelled);
    });
    return result_;
}

}  // namespace

SaveResult WriteJpeg(const dib::DibView& picture, const saving::JpegSaveOptions& options,
                     files::ByteSink& sink, const dib::Progress& progress,
                     const saving::FileExtras& extras) {
    return JpegSession(sink, progress).Save(picture, options, extras);
}

}  // namespace tessary::dcjpeg
