#include "bench/save/bare_writers.h"

#include <cstdio>

#include <jpeglib.h>
#include <png.h>

#include <algorithm>
#include <memory>

#include "helpers/dib/unpack_row.h"

namespace tessary::bench {
namespace {

constexpr size_t kBufferSize = 256u << 10;
constexpr size_t kLongestWrite = 1u << 30;

}  // namespace

PlainFile::PlainFile(const std::wstring& path)
    : file_(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                        FILE_ATTRIBUTE_NORMAL, nullptr)) {
    buffer_.reserve(kBufferSize);
}

PlainFile::~PlainFile() {
    WriteOut(buffer_);
    FlushFileBuffers(file_);
    CloseHandle(file_);
}

void PlainFile::Write(std::span<const uint8_t> bytes) {
    if (bytes.size() > kBufferSize - buffer_.size()) {
        WriteOut(buffer_);
        buffer_.clear();
    }
    if (bytes.size() > kBufferSize / 2) return WriteOut(bytes);
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

void PlainFile::WriteOut(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        DWORD done = 0;
        WriteFile(file_, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kLongestWrite)),
                  &done, nullptr);
        if (done == 0) return;
        bytes = bytes.subspan(done);
    }
}

void WriteBytes(std::span<const uint8_t> bytes, const std::wstring& path) {
    PlainFile(path).Write(bytes);
}

void WriteBarePng(const dib::DibView& picture, const std::wstring& path) {
    PlainFile file(path);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp from, png_bytep bytes, png_size_t size) {
            static_cast<PlainFile*>(png_get_io_ptr(from))->Write({bytes, size});
        },
        [](png_structp) {});
    const bool hasTable = picture.Format() == dib::PixelFormat::kIndexed8;
    png_set_IHDR(png, info, static_cast<png_uint_32>(picture.Width()),
                 static_cast<png_uint_32>(picture.Height()), 8,
                 hasTable ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    if (hasTable) {
        std::vector<png_color> colors;
        for (const dib::PaletteEntry& entry : picture.Palette())
            colors.push_back({entry.red, entry.green, entry.blue});
        png_set_PLTE(png, info, colors.data(), static_cast<int>(colors.size()));
    } else {
        png_set_bgr(png);
    }
    png_write_info(png, info);
    for (int32_t y = 0; y < picture.Height(); ++y)
        png_write_row(png, picture.Row(y).data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
}

void WriteBareJpeg(const dib::DibView& picture, const std::wstring& path) {
    std::FILE* file = _wfopen(path.c_str(), L"wb");
    if (file == nullptr) return;
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = static_cast<JDIMENSION>(picture.Width());
    jpeg.image_height = static_cast<JDIMENSION>(picture.Height());
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 60, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    const dib::RowReader reader(picture);
    std::vector<uint8_t> bgr(static_cast<size_t>(picture.Width()) * 3);
    const bool isStored = picture.Format() == dib::PixelFormat::kBgr24;
    for (int32_t y = 0; y < picture.Height(); ++y) {
        const auto stored = picture.Row(y);
        if (!isStored) reader.Row(stored, bgr);
        auto* row = const_cast<JSAMPROW>(isStored ? stored.data() : bgr.data());
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    // With the same care for the disk.
    std::fflush(file);
    std::fclose(file);
    const HANDLE written = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL, nullptr);
    FlushFileBuffers(written);
    CloseHandle(written);
}

}  // namespace tessary::bench
