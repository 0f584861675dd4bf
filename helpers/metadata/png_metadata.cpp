#include <png.h>

#include <array>
#include <csetjmp>
#include <string_view>

#include "helpers/metadata/file_metadata.h"
#include "helpers/metadata/late_exif.h"
#include "helpers/metadata/raw_exif.h"

namespace tessary::metadata {
namespace {

constexpr png_uint_32 kMostChunks = 1000;
constexpr size_t kLargestChunk = 8u << 20;

struct TextKind {
    std::string_view keyword;
    FieldKind kind;
};
constexpr TextKind kTextKinds[] = {
    {"Title", FieldKind::kTitle},
    {"Author", FieldKind::kArtist},
    {"Description", FieldKind::kDescription},
    {"Copyright", FieldKind::kCopyright},
    {"Software", FieldKind::kSoftware},
    {"Comment", FieldKind::kComment},
};

// Characters of Latin-1, as the older kinds of text have them, unless that is UTF-8 or of another
// code page all the same: those are told apart later.
std::string TextOf(const png_text& text) {
    const bool isLatin = text.compression < PNG_ITXT_COMPRESSION_NONE;
    return {text.text, isLatin ? text.text_length : text.itxt_length};
}

// libpng at the chunks of one file, up to the pixels. It is left by longjmp when something fails:
// what runs inside Run calls libpng, and owns nothing.
class PngChunks {
  public:
    explicit PngChunks(dib::ByteSource& source) : source_(source) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, OnError, OnWarning);
        if (png_ != nullptr) info_ = png_create_info_struct(png_);
    }
    PngChunks(const PngChunks&) = delete;
    PngChunks& operator=(const PngChunks&) = delete;
    ~PngChunks() { png_destroy_read_struct(&png_, &info_, nullptr); }

    void Read() {
        Run([&] {
            png_set_read_fn(png_, this, [](png_structp png, png_bytep into, size_t size) {
                auto* chunks = static_cast<PngChunks*>(png_get_io_ptr(png));
                const auto count = chunks->source_.ReadAt(chunks->position_, {into, size});
                if (count != size) png_error(png, "");
                chunks->position_ += size;
            });
            png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            png_set_chunk_cache_max(png_, kMostChunks);
            png_set_chunk_malloc_max(png_, kLargestChunk);
            png_set_crc_action(png_, PNG_CRC_QUIET_USE, PNG_CRC_WARN_DISCARD);
            png_read_info(png_, info_);
        });
    }

    Carried Found() {
        Carried carried;
        png_textp texts = nullptr;
        int count = 0;
        png_bytep exif = nullptr;
        png_uint_32 exifSize = 0;
        png_charp name = nullptr;
        int compression = 0;
        png_bytep icc = nullptr;
        png_uint_32 iccSize = 0;
        Run([&] {
            png_get_text(png_, info_, &texts, &count);
            png_get_eXIf_1(png_, info_, &exifSize, &exif);
            png_get_iCCP(png_, info_, &name, &compression, &icc, &iccSize);
        });
        for (int i = 0; i < count; ++i) {
            for (const TextKind& known : kTextKinds) {
                if (texts[i].key != known.keyword || texts[i].text == nullptr) continue;
                AddField(carried.fields, known.kind, TextOf(texts[i]));
            }
        }
        if (exif != nullptr) carried.exif.assign(exif, exif + exifSize);
        if (icc != nullptr) carried.profile.assign(icc, icc + iccSize);
        return carried;
    }

  private:
    [[noreturn]] static void OnError(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    // It would go on, and make room for as much as a chunk says of itself.
    static void OnWarning(png_structp png, png_const_charp message) {
        if (std::string_view(message).find("too large") != std::string_view::npos) {
            png_longjmp(png, 1);
        }
    }

    template <typename Steps>
    void Run(const Steps& steps) {
        if (info_ != nullptr && setjmp(png_jmpbuf(png_)) == 0) steps();
    }

    dib::ByteSource& source_;
    uint64_t position_ = 0;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

}  // namespace

Carried ReadPngMetadata(dib::ByteSource& source) {
    PngChunks chunks(source);
    chunks.Read();
    Carried carried = chunks.Found();
    if (carried.exif.empty()) carried.exif = FindLateExif(source);
    if (carried.exif.empty()) carried.exif = FindRawExif(source);
    return carried;
}

}  // namespace tessary::metadata
