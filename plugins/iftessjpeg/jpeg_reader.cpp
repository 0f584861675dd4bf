#include "plugins/iftessjpeg/jpeg_reader.h"

#include <jerror.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace tessary::jpeg {
namespace {

using codec::Result;

constexpr size_t kBufferSize = 64 * 1024;
constexpr unsigned kLongestMarker = 0xFFFF;

// No encoder writes more than a few dozen scans; thousands of empty ones are a small file that
// keeps a decoder busy for minutes.
constexpr int kMostScans = 500;

// What the library does without computing all samples.
constexpr unsigned kMostReduction = 8;

// Fed at the end of a file that is cut short.
constexpr std::array<JOCTET, 2> kEndOfImage{0xFF, JPEG_EOI};

Result ResultOfMessage(int message) {
    switch (message) {
        case JERR_OUT_OF_MEMORY:
        case JERR_NO_BACKING_STORE:
            return Result::kOutOfMemory;
        case JERR_NO_SOI:
        case JERR_BAD_PRECISION:
        case JERR_SOF_UNSUPPORTED:
        case JERR_ARITH_NOTIMPL:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_NOT_COMPILED:
        case JERR_NOTIMPL:
            return Result::kUnknownFormat;
        default:
            return Result::kBrokenData;
    }
}

}  // namespace

JpegReader::JpegReader(dib::ByteSource& source, codec::Progress& progress)
    : source_(source), progress_(progress), buffer_(kBufferSize) {
    jpeg_.err = jpeg_std_error(&errors_);
    errors_.error_exit = OnError;
    errors_.output_message = [](j_common_ptr) {};
    errors_.emit_message = OnMessage;
    jpeg_.client_data = this;

    input_.init_source = [](j_decompress_ptr) {};
    input_.fill_input_buffer = FillBuffer;
    input_.skip_input_data = SkipBytes;
    input_.resync_to_restart = jpeg_resync_to_restart;
    input_.term_source = [](j_decompress_ptr) {};
    monitor_.progress_monitor = OnProgress;
}

JpegReader::~JpegReader() {
    jpeg_destroy_decompress(&jpeg_);
}

void JpegReader::Leave(Result result) {
    result_ = result;
    std::longjmp(escape_, 1);
}

void JpegReader::OnError(j_common_ptr jpeg) {
    auto* reader = static_cast<JpegReader*>(jpeg->client_data);
    reader->Leave(ResultOfMessage(jpeg->err->msg_code));
}

// What could be decoded is shown all the same.
void JpegReader::OnMessage(j_common_ptr jpeg, int level) {
    if (level >= 0) return;
    ++jpeg->err->num_warnings;
    auto* reader = static_cast<JpegReader*>(jpeg->client_data);
    switch (jpeg->err->msg_code) {
        case JWRN_JPEG_EOF:
            reader->endsEarly_ = true;
            break;
        case JWRN_EXTRANEOUS_DATA:
            // What stands in front of the headers and behind the last pixel harms nobody.
            if (reader->decodes_ && jpeg->err->msg_parm.i[1] != JPEG_EOI) reader->isCorrupt_ = true;
            break;
        case JWRN_HIT_MARKER:
        case JWRN_HUFF_BAD_CODE:
        case JWRN_ARITH_BAD_CODE:
        case JWRN_MUST_RESYNC:
        case JWRN_BOGUS_PROGRESSION:
            reader->isCorrupt_ = true;
            break;
    }
}

void JpegReader::OnProgress(j_common_ptr jpeg) {
    auto* reader = static_cast<JpegReader*>(jpeg->client_data);
    const jpeg_progress_mgr& monitor = reader->monitor_;
    if (reader->jpeg_.input_scan_number > kMostScans) reader->Leave(Result::kBrokenData);
    const uint64_t passes = std::max(monitor.total_passes, monitor.completed_passes + 1);
    const uint64_t limit = std::max(monitor.pass_limit, 1L);
    const uint64_t done = monitor.completed_passes * limit +
                          std::min<uint64_t>(std::max(monitor.pass_counter, 0L), limit);
    // The last report is left to DecodeRows, so that there is one.
    if (!reader->progress_.Report(std::min(done, passes * limit - 1), passes * limit)) {
        reader->Leave(Result::kAborted);
    }
}

boolean JpegReader::FillBuffer(j_decompress_ptr jpeg) {
    auto* reader = static_cast<JpegReader*>(jpeg->client_data);
    const auto count = reader->source_.ReadAt(reader->position_, reader->buffer_);
    if (!count) reader->Leave(Result::kReadError);
    if (*count != 0) {
        reader->position_ += *count;
        reader->input_.next_input_byte = reader->buffer_.data();
        reader->input_.bytes_in_buffer = *count;
        return TRUE;
    }
    if (reader->position_ == 0) reader->Leave(Result::kUnknownFormat);
    WARNMS(jpeg, JWRN_JPEG_EOF);
    reader->input_.next_input_byte = kEndOfImage.data();
    reader->input_.bytes_in_buffer = kEndOfImage.size();
    return TRUE;
}

void JpegReader::SkipBytes(j_decompress_ptr jpeg, long count) {
    auto* reader = static_cast<JpegReader*>(jpeg->client_data);
    if (count <= 0) return;
    const size_t wanted = static_cast<size_t>(count);
    const size_t buffered = std::min(wanted, reader->input_.bytes_in_buffer);
    reader->input_.next_input_byte += buffered;
    reader->input_.bytes_in_buffer -= buffered;
    reader->position_ += wanted - buffered;
}

Result JpegReader::ReadHeader() {
    if (setjmp(escape_) != 0) return result_;
    jpeg_create_decompress(&jpeg_);
    jpeg_.src = &input_;
    jpeg_.progress = &monitor_;
    jpeg_save_markers(&jpeg_, JPEG_APP0 + 1, kLongestMarker);
    jpeg_save_markers(&jpeg_, JPEG_APP0 + 2, kLongestMarker);
    jpeg_read_header(&jpeg_, TRUE);
    ReadMarkers();
    width_ = jpeg_.image_width;
    height_ = jpeg_.image_height;
    switch (StoredPixels()) {
        case Pixels::kGrey:
            jpeg_.out_color_space = JCS_GRAYSCALE;
            break;
        case Pixels::kBgr:
            jpeg_.out_color_space = JCS_EXT_BGR;
            break;
        default:
            jpeg_.out_color_space = JCS_CMYK;
    }
    return Result::kSuccess;
}

Result JpegReader::Reduce(uint32_t enough) {
    const uint32_t longer = std::max(width_, height_);
    jpeg_.scale_num = 1;
    jpeg_.scale_denom = 1;
    while (enough > 0 && jpeg_.scale_denom < kMostReduction &&
           longer / (jpeg_.scale_denom * 2) >= enough) {
        jpeg_.scale_denom *= 2;
    }
    if (jpeg_.scale_denom == 1) return Result::kSuccess;
    if (setjmp(escape_) != 0) return result_;
    jpeg_calc_output_dimensions(&jpeg_);
    width_ = jpeg_.output_width;
    height_ = jpeg_.output_height;
    return Result::kSuccess;
}

JpegReader::Pixels JpegReader::StoredPixels() const {
    if (jpeg_.num_components == 1) return Pixels::kGrey;
    if (jpeg_.jpeg_color_space != JCS_CMYK && jpeg_.jpeg_color_space != JCS_YCCK) {
        return Pixels::kBgr;
    }
    return jpeg_.saw_Adobe_marker ? Pixels::kInvertedInks : Pixels::kInks;
}

bool JpegReader::ReadIcc(JOCTET** icc, unsigned* size) {
    if (setjmp(escape_) != 0) return false;
    return jpeg_read_icc_profile(&jpeg_, icc, size) != 0;
}

std::optional<color::Profile> JpegReader::Colors() {
    JOCTET* icc = nullptr;
    unsigned size = 0;
    std::optional<color::Profile> profile;
    if (ReadIcc(&icc, &size)) {
        const std::unique_ptr<JOCTET, decltype(&std::free)> owner(icc, std::free);
        profile = color::Profile::FromIcc({icc, size});
    }
    if (!profile && exif_.isAdobeRgb) profile = color::Profile::AdobeRgb();
    return profile;
}

void JpegReader::ReadMarkers() {
    for (auto* marker = jpeg_.marker_list; marker != nullptr; marker = marker->next) {
        if (marker->marker != JPEG_APP0 + 1) continue;
        const codec::ExifEntries entries =
            codec::ReadExifMarker({marker->data, marker->data_length});
        if (entries.orientation != codec::kUprightOrientation) {
            exif_.orientation = entries.orientation;
        }
        exif_.isAdobeRgb = exif_.isAdobeRgb || entries.isAdobeRgb;
        if (exif_.xPelsPerMeter == 0) exif_.xPelsPerMeter = entries.xPelsPerMeter;
        if (exif_.yPelsPerMeter == 0) exif_.yPelsPerMeter = entries.yPelsPerMeter;
    }
}

codec::PictureForm JpegReader::Form() const {
    codec::PictureForm form;
    form.width = width_;
    form.height = height_;
    form.bitCount = jpeg_.num_components == 1 ? 8 : 24;
    form.xPelsPerMeter = exif_.xPelsPerMeter;
    form.yPelsPerMeter = exif_.yPelsPerMeter;
    // JFIF's density unit: 0 is an aspect ratio, 1 per inch, 2 per centimetre.
    if (jpeg_.saw_JFIF_marker && jpeg_.density_unit == 1) {
        form.xPelsPerMeter = codec::PelsPerMeterFromInch(jpeg_.X_density);
        form.yPelsPerMeter = codec::PelsPerMeterFromInch(jpeg_.Y_density);
    } else if (jpeg_.saw_JFIF_marker && jpeg_.density_unit == 2) {
        form.xPelsPerMeter = codec::PelsPerMeterFromCentimetre(jpeg_.X_density);
        form.yPelsPerMeter = codec::PelsPerMeterFromCentimetre(jpeg_.Y_density);
    }
    if (codec::SwapsAxes(exif_.orientation)) {
        std::swap(form.width, form.height);
        std::swap(form.xPelsPerMeter, form.yPelsPerMeter);
    }
    return form;
}

// What was decoded before the data made no sense any more is shown, the rest grey, as libjpeg
// itself fills up a file that is cut short.
Result JpegReader::EndEarly(codec::OrientedRows& rows) {
    if (result_ != Result::kBrokenData || jpeg_.output_scanline == 0) return result_;
    isCorrupt_ = true;
    TellDamage();
    for (uint32_t y = jpeg_.output_scanline; y < height_; ++y) {
        FillGrey(rows.RowBuffer(y));
        rows.RowDone(y);
    }
    rows.Finish();
    return Result::kSuccess;
}

void JpegReader::FillGrey(uint8_t* row) const {
    const uint32_t width = width_;
    const Pixels pixels = StoredPixels();
    const size_t bytes = pixels == Pixels::kGrey ? 1 : pixels == Pixels::kBgr ? 3 : 4;
    std::memset(row, 0x80, width * bytes);
    if (bytes != 4) return;
    const uint8_t noBlack = pixels == Pixels::kInvertedInks ? 0xFF : 0;
    for (uint32_t x = 0; x < width; ++x) {
        row[size_t{x} * 4 + 3] = noBlack;
    }
}

// Whether the scans that were read hold everything. A file that lacks nothing but its end mark is
// whole; in one scan of Huffman codes, missing data is told by another warning.
bool JpegReader::HasAllScans() {
    if (jpeg_.coef_bits == nullptr) return !jpeg_.arith_code && !jpeg_has_multiple_scans(&jpeg_);
    for (int component = 0; component < jpeg_.num_components; ++component) {
        if (std::ranges::any_of(jpeg_.coef_bits[component], [](int bits) { return bits != 0; })) {
            return false;
        }
    }
    return true;
}

void JpegReader::TellDamage() {
    if (endsEarly_ && (isCorrupt_ || !HasAllScans())) {
        progress_.Tell(codec::Condition::kDamaged, L"JPEGデータが途中で切れています");
    } else if (isCorrupt_) {
        progress_.Tell(codec::Condition::kDamaged, L"JPEGデータが壊れています");
    }
}

Result JpegReader::DecodeRows(codec::OrientedRows& rows) {
    if (setjmp(escape_) != 0) return EndEarly(rows);
    decodes_ = true;
    jpeg_start_decompress(&jpeg_);
    while (jpeg_.output_scanline < jpeg_.output_height) {
        const uint32_t y = jpeg_.output_scanline;
        JSAMPROW row = rows.RowBuffer(y);
        jpeg_read_scanlines(&jpeg_, &row, 1);
        rows.RowDone(y);
    }
    rows.Finish();
    TellDamage();
    // What follows the last row (jpeg_finish_decompress) adds nothing to the picture.
    if (!progress_.Report(1, 1)) return Result::kAborted;
    return Result::kSuccess;
}

}  // namespace tessary::jpeg
