#include "plugins/iftesspng/png_reader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "helpers/metadata/late_exif.h"
#include "helpers/metadata/raw_exif.h"
#include "plugins/common/exif.h"
#include "plugins/common/flatten_rows.h"
#include "plugins/common/palette.h"
#include "plugins/iftesspng/wide_row.h"

namespace tessary::png {
namespace {

using codec::Result;
using dib::PaletteEntry;

constexpr size_t kSignatureSize = 8;

// Bounds for forged files: side lengths, chunks kept, bytes that one chunk may unpack to.
constexpr uint32_t kMostPixelsPerSide = 1'000'000;
constexpr uint32_t kMostChunks = 1000;
constexpr size_t kLargestChunk = 8u << 20;

// Bytes of picture data that are read at once.
constexpr size_t kDataSize = 16 * 1024;
constexpr size_t kLastDataSize = 64;

// The optional chunks that are read; all others are skipped unseen.
constexpr png_byte kReadChunks[] = "bKGD\0pHYs\0iCCP\0sRGB\0gAMA\0cHRM\0eXIf";

constexpr png_uint_32 kPictureDataChunk = 0x49444154;   // "IDAT"
constexpr png_uint_32 kTransparencyChunk = 0x74524E53;  // "tRNS"
constexpr png_uint_32 kBackgroundChunk = 0x624B4744;    // "bKGD"

unsigned Distance(PaletteEntry a, PaletteEntry b) {
    return static_cast<unsigned>(std::abs(a.red - b.red) + std::abs(a.green - b.green) +
                                 std::abs(a.blue - b.blue));
}

}  // namespace

PngReader::PngReader(dib::ByteSource& source, codec::Progress& progress,
                     uint64_t leastUnpackedAhead)
    : source_(source),
      progress_(progress),
      leastUnpackedAhead_(leastUnpackedAhead),
      background_(codec::kWhite) {}

PngReader::~PngReader() {
    png_destroy_read_struct(&png_, &info_, nullptr);
}

void PngReader::Leave(Result result) {
    result_ = result;
    std::longjmp(escape_, 1);
}

void PngReader::OnError(png_structp png, png_const_charp) {
    auto* reader = static_cast<PngReader*>(png_get_error_ptr(png));
    reader->Leave(reader->noMemory_ ? Result::kOutOfMemory : Result::kBrokenData);
}

// libpng goes on behind a chunk whose check sum is wrong, without what it says where the picture
// can do without; two of these change what the picture shows. What else it warns of is how some
// programs write them.
void PngReader::OnWarning(png_structp png, png_const_charp message) {
    if (std::string_view(message).find("CRC") == std::string_view::npos) return;
    auto* reader = static_cast<PngReader*>(png_get_error_ptr(png));
    const png_uint_32 chunk = png_get_io_chunk_type(png);
    if (chunk == kPictureDataChunk) reader->hasWrongSum_ = true;
    if (chunk == kTransparencyChunk || chunk == kBackgroundChunk) reader->lacksTransparency_ = true;
}

std::optional<size_t> PngReader::Read(std::span<uint8_t> out) {
    if (unpacked_) return unpacked_->Read(out);
    const auto got = source_.ReadAt(position_, out);
    position_ += got.value_or(0);
    return got;
}

void PngReader::OnRead(png_structp png, png_bytep out, size_t count) {
    auto* reader = static_cast<PngReader*>(png_get_io_ptr(png));
    const auto got = reader->Read({out, count});
    if (!got) {
        reader->Leave(reader->unpacked_ ? reader->unpacked_->Failure() : Result::kReadError);
    }
    if (*got == count) {
        reader->ChooseDataSize();
        return;
    }
    reader->cutShort_ = true;
    reader->Leave(Result::kBrokenData);
}

// libpng decodes whole reads only: what a read lacks at the end of a file cut short takes the rest
// of it along. So the last reads are small ones.
void PngReader::ChooseDataSize() {
    if (unpacked_) return;  // its chunks are always whole
    const uint64_t left = source_.Size() - position_;
    png_set_compression_buffer_size(png_,
                                    left > 2 * uint64_t{kDataSize} ? kDataSize : kLastDataSize);
}

void PngReader::OnRow(png_structp png, png_row_infop row, png_bytep data) {
    const auto* reader = static_cast<PngReader*>(png_get_user_transform_ptr(png));
    if (row->bit_depth == 2) {
        WidenRow(data, row->rowbytes);
    } else if (row->channels == 2) {
        codec::FlattenGreyRow(data, data, row->width, reader->background_);
    } else {
        codec::FlattenColorRow(data, data, row->width, reader->background_);
    }
}

png_voidp PngReader::Allocate(png_structp png, png_alloc_size_t size) {
    void* block = std::malloc(size);
    if (block == nullptr) static_cast<PngReader*>(png_get_mem_ptr(png))->noMemory_ = true;
    return block;
}

void PngReader::Free(png_structp, png_voidp block) {
    std::free(block);
}

Result PngReader::ReadHeader() {
    std::array<uint8_t, kSignatureSize> signature{};
    if (!source_.ReadAt(0, signature)) return Result::kReadError;
    if (png_sig_cmp(signature.data(), 0, signature.size()) != 0) return Result::kUnknownFormat;
    if (const auto start = FindPictureData(source_, leastUnpackedAhead_)) {
        unpacked_.emplace(source_, *start);
    }
    if (setjmp(escape_) != 0) return result_;
    png_ = png_create_read_struct_2(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning, this, Allocate,
                                    Free);
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (info_ == nullptr) return Result::kOutOfMemory;
    png_set_read_fn(png_, this, OnRead);
    png_set_user_limits(png_, kMostPixelsPerSide, kMostPixelsPerSide);
    png_set_chunk_cache_max(png_, kMostChunks);
    png_set_chunk_malloc_max(png_, kLargestChunk);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_AS_DEFAULT, kReadChunks,
                                sizeof kReadChunks / 5);
    PngColors::KeepChunks(png_);
    png_read_info(png_, info_);
    // From here on the only chunks that a picture needs are those of its data.
    png_set_crc_action(png_, unpacked_ ? PNG_CRC_QUIET_USE : PNG_CRC_WARN_USE, PNG_CRC_DEFAULT);
    if (unpacked_) {
        png_set_option(png_, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
    }
    png_get_IHDR(png_, info_, &width_, &height_, &bitDepth_, &colorType_, nullptr, nullptr,
                 nullptr);
    ReadBackground();
    ReadOrientation();
    ReadColors();
    return Result::kSuccess;
}

void PngReader::ReadOrientation() {
    png_bytep exif = nullptr;
    png_uint_32 size = 0;
    const bool isEarly = png_get_eXIf_1(png_, info_, &size, &exif) != 0;
    std::vector<uint8_t> other;
    if (!isEarly) other = metadata::FindLateExif(source_);
    if (!isEarly && other.empty()) other = metadata::FindRawExif(source_);
    orientation_ = codec::ReadExif(isEarly ? std::span(exif, size) : std::span(other)).orientation;
}

void PngReader::ReadColors() {
    const bool isGrey = (colorType_ & PNG_COLOR_MASK_COLOR) == 0;
    const bool hasAlpha =
        (colorType_ & PNG_COLOR_MASK_ALPHA) != 0 || png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    const Samples stored{!isGrey, bitDepth_ == 16, hasAlpha};
    colors_.Read(png_, info_, isGrey, stored);
    fileBackground_ = background_;
    colors_.Convert({&background_, 1});
}

void PngReader::ReadBackground() {
    png_color_16p color = nullptr;
    if (png_get_bKGD(png_, info_, &color) == 0) return;
    const auto toByte = [this](unsigned sample) {
        if (bitDepth_ == 16) return static_cast<uint8_t>(sample >> 8);
        const unsigned most = (1u << bitDepth_) - 1;
        return static_cast<uint8_t>((sample & most) * 255 / most);
    };
    if (IsIndexed()) {
        png_colorp table = nullptr;
        int count = 0;
        png_get_PLTE(png_, info_, &table, &count);
        if (color->index >= count) return;
        const png_color& entry = table[color->index];
        background_ = {entry.blue, entry.green, entry.red, 0};
    } else if ((colorType_ & PNG_COLOR_MASK_COLOR) == 0) {
        const uint8_t level = toByte(color->gray);
        background_ = {level, level, level, 0};
    } else {
        background_ = {toByte(color->blue), toByte(color->green), toByte(color->red), 0};
    }
}

// Whether pixels are indexes into a table that transparency, where it is not handed out, can be
// worked into: then no pixel needs to change.
bool PngReader::HasTable() const {
    const bool isStoredSo = IsIndexed() || (colorType_ == PNG_COLOR_TYPE_GRAY && bitDepth_ <= 8);
    return isStoredSo && !HandsOutAlpha();
}

bool PngReader::HandsOutAlpha() const {
    return keepsAlpha_ && ((colorType_ & PNG_COLOR_MASK_ALPHA) != 0 ||
                           png_get_valid(png_, info_, PNG_INFO_tRNS) != 0);
}

codec::PictureForm PngReader::Form() const {
    codec::PictureForm form;
    form.width = width_;
    form.height = height_;
    if (HasTable()) {
        // Windows knows no 2-bit pictures, and only whole bytes are mirrored or turned.
        const int bits = bitDepth_ == 2 ? 4 : bitDepth_;
        form.bitCount = static_cast<uint16_t>(IsUpright() ? bits : 8);
    } else if (HandsOutAlpha()) {
        form.bitCount = 32;
    } else {
        form.bitCount = (colorType_ & PNG_COLOR_MASK_COLOR) == 0 ? 8 : 24;
    }
    const auto pels = [](png_uint_32 value) {
        constexpr png_uint_32 kMost = std::numeric_limits<int32_t>::max();
        return value > kMost ? 0 : static_cast<int32_t>(value);
    };
    form.xPelsPerMeter = pels(png_get_x_pixels_per_meter(png_, info_));
    form.yPelsPerMeter = pels(png_get_y_pixels_per_meter(png_, info_));
    if (codec::SwapsAxes(orientation_)) {
        std::swap(form.width, form.height);
        std::swap(form.xPelsPerMeter, form.yPelsPerMeter);
    }
    return form;
}

std::vector<PaletteEntry> PngReader::Palette() const {
    if (!HasTable()) return codec::GreyPalette(Form().bitCount);  // none for colours

    png_bytep alphas = nullptr;
    int alphaCount = 0;
    png_color_16p clear = nullptr;
    const bool transparent = png_get_tRNS(png_, info_, &alphas, &alphaCount, &clear) != 0;
    std::vector<PaletteEntry> palette = codec::GreyPalette(static_cast<unsigned>(bitDepth_));
    if (!IsIndexed()) {
        colors_.Convert(palette);
        if (transparent && clear->gray < palette.size()) palette[clear->gray] = background_;
        return palette;
    }
    std::fill(palette.begin(), palette.end(), PaletteEntry{});
    png_colorp table = nullptr;
    int count = 0;
    png_get_PLTE(png_, info_, &table, &count);
    for (size_t i = 0; i < std::min(palette.size(), static_cast<size_t>(count)); ++i) {
        PaletteEntry color{table[i].blue, table[i].green, table[i].red, 0};
        colors_.Convert({&color, 1});
        const uint8_t alpha =
            transparent && i < static_cast<size_t>(alphaCount) ? alphas[i] : uint8_t{0xFF};
        palette[i] = codec::BlendColor(color, alpha, background_);
    }
    return palette;
}

void PngReader::SetTransformations() {
    if (HasTable()) {
        if (!IsUpright()) png_set_packing(png_);  // a byte for each pixel
        if (bitDepth_ != 2 || !IsUpright()) return;
        png_set_user_transform_info(png_, this, 4, 1);
        png_set_read_user_transform_fn(png_, OnRow);
        return;
    }
    const bool hasAlpha = (colorType_ & PNG_COLOR_MASK_ALPHA) != 0;
    const bool hasClearColor = png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    if (hasClearColor) png_set_tRNS_to_alpha(png_);
    png_set_bgr(png_);
    if (ConvertsRows()) return;
    png_set_scale_16(png_);
    if (HandsOutAlpha()) {
        png_set_gray_to_rgb(png_);
    } else if (hasAlpha || hasClearColor) {
        png_set_user_transform_info(png_, this, 8,
                                    (colorType_ & PNG_COLOR_MASK_COLOR) == 0 ? 1 : 3);
        png_set_read_user_transform_fn(png_, OnRow);
    }
}

codec::RowConversion PngReader::Conversion() const {
    if (!ConvertsRows()) return {};
    return colors_.ForRows(width_, HandsOutAlpha(), background_);
}

Result PngReader::DecodeRows(codec::OrientedRows& rows) {
    if (!ReadRows(rows)) {
        if (result_ != Result::kBrokenData || rowsDone_ == 0) return result_;
        PlaceRows(rows);
        if (!HasAllData()) {
            FillRest(rows);
            progress_.Tell(codec::Condition::kDamaged, cutShort_ ? L"PNGデータが途中で切れています"
                                                                 : L"PNGデータが壊れています");
        }
    } else {
        PlaceRows(rows);
    }
    rows.Finish();
    if (hasWrongSum_ || (unpacked_ && unpacked_->HasWrongSum())) {
        progress_.Tell(codec::Condition::kDamaged, L"PNGデータが壊れています");
    }
    if (lacksTransparency_) {
        progress_.Tell(codec::Condition::kDamaged, L"PNGの透明色の情報が壊れています");
    }
    return progress_.Report(1, 1) ? Result::kSuccess : Result::kAborted;
}

// Whether a file that was cut short or is damaged has all of its picture data: libpng reads what
// follows the last row, up to the check sum behind the data, along with that row.
bool PngReader::HasAllData() const {
    const bool isCutInData =
        cutShort_ &&
        (unpacked_ ? unpacked_->IsCutInData() : (png_get_io_state(png_) & PNG_IO_CHUNK_DATA) != 0);
    if (isCutInData) return false;
    if (png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE) {
        return png_get_current_pass_number(png_) >= PNG_INTERLACE_ADAM7_PASSES;
    }
    return png_get_current_row_number(png_) >= height_;
}

bool PngReader::ReadRows(codec::OrientedRows& rows) {
    if (setjmp(escape_) != 0) return false;
    SetTransformations();
    const unsigned passes = static_cast<unsigned>(png_set_interlace_handling(png_));
    png_read_update_info(png_, info_);
    if (passes > 1 && (ConvertsRows() || !IsUpright())) {
        wholeStride_ = png_get_rowbytes(png_, info_);
        whole_.resize(wholeStride_ * height_);
    }
    const uint64_t total = uint64_t{passes} * height_;
    for (unsigned pass = 0; pass < passes; ++pass) {
        for (uint32_t y = 0; y < height_; ++y) {
            // The second row argument fills the gaps between the pixels of an early pass, so that
            // a picture cut short shows blocks instead of dots.
            png_read_row(png_, nullptr,
                         whole_.empty() ? rows.RowBuffer(y) : &whole_[y * wholeStride_]);
            if (whole_.empty()) rows.RowDone(y);
            if (pass == 0) rowsDone_ = y + 1;
            if (!progress_.Report(uint64_t{pass} * height_ + y, total)) Leave(Result::kAborted);
        }
    }
    return true;
}

void PngReader::PlaceRows(codec::OrientedRows& rows) const {
    if (whole_.empty()) return;
    for (uint32_t y = 0; y < rowsDone_; ++y) {
        std::memcpy(rows.RowBuffer(y), &whole_[y * wholeStride_], wholeStride_);
        rows.RowDone(y);
    }
}

void PngReader::FillRest(codec::OrientedRows& rows) const {
    const std::vector<uint8_t> row = BackgroundRow();
    for (uint32_t y = rowsDone_; y < height_; ++y) {
        std::memcpy(rows.RowBuffer(y), row.data(), row.size());
        rows.RowDone(y);
    }
}

// A stored row of the background alone.
std::vector<uint8_t> PngReader::BackgroundRow() const {
    const uint16_t bitCount = Form().bitCount;
    if (HasTable()) {
        const std::vector<PaletteEntry> palette = Palette();
        const auto nearest = std::min_element(
            palette.begin(), palette.end(), [this](PaletteEntry a, PaletteEntry b) {
                return Distance(a, background_) < Distance(b, background_);
            });
        // Every pixel of a byte alike: 0xFF, 0x11 or 1 times the index.
        const unsigned spread = 0xFFu / ((1u << bitCount) - 1);
        return std::vector<uint8_t>(static_cast<size_t>(dib::RowBytes(width_, bitCount)),
                                    static_cast<uint8_t>((nearest - palette.begin()) * spread));
    }
    const unsigned bytes = ConvertsRows() ? colors_.Stored().PixelBytes() : bitCount / 8u;
    std::vector<uint8_t> row(size_t{width_} * bytes);
    if (HandsOutAlpha()) return row;  // transparent
    const Samples samples = ConvertsRows() ? colors_.Stored() : Samples{bitCount == 24};
    const std::vector<uint8_t> pixel = samples.Pixel(fileBackground_);
    for (size_t at = 0; at < row.size(); at += bytes)
        std::ranges::copy(pixel, row.begin() + static_cast<ptrdiff_t>(at));
    return row;
}

}  // namespace tessary::png
