#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <array>
#include <csetjmp>
#include <memory>

#include "helpers/metadata/exif_data.h"
#include "helpers/metadata/file_metadata.h"

namespace tessary::metadata {
namespace {

constexpr size_t kBufferSize = 64 * 1024;
constexpr unsigned kLongestMarker = 0xFFFF;
// A file may be nothing but markers.
constexpr uint64_t kMostBytes = 16u << 20;
constexpr std::array<JOCTET, 2> kEndOfImage{0xFF, JPEG_EOI};

// libjpeg at the headers of one file. It is left by longjmp when something fails: what runs inside
// Run calls libjpeg, and owns nothing.
class JpegHeaders {
  public:
    explicit JpegHeaders(dib::ByteSource& source) : source_(source), buffer_(kBufferSize) {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = [](j_common_ptr jpeg) { std::longjmp(Of(jpeg).escape_, 1); };
        errors_.emit_message = [](j_common_ptr, int) {};
        errors_.output_message = [](j_common_ptr) {};
        jpeg_.client_data = this;
        input_.init_source = [](j_decompress_ptr) {};
        input_.fill_input_buffer = [](j_decompress_ptr jpeg) -> boolean {
            Of(jpeg).Fill();
            return TRUE;
        };
        input_.skip_input_data = [](j_decompress_ptr jpeg, long count) { Of(jpeg).Skip(count); };
        input_.resync_to_restart = jpeg_resync_to_restart;
        input_.term_source = [](j_decompress_ptr) {};
    }
    JpegHeaders(const JpegHeaders&) = delete;
    JpegHeaders& operator=(const JpegHeaders&) = delete;
    ~JpegHeaders() { jpeg_destroy_decompress(&jpeg_); }

    // Also of headers that end in damage the markers before it count.
    void Read() {
        Run([&] {
            jpeg_create_decompress(&jpeg_);
            jpeg_.src = &input_;
            jpeg_save_markers(&jpeg_, JPEG_APP0 + 1, kLongestMarker);
            jpeg_save_markers(&jpeg_, JPEG_APP0 + 2, kLongestMarker);
            jpeg_save_markers(&jpeg_, JPEG_COM, kLongestMarker);
            jpeg_read_header(&jpeg_, TRUE);
        });
    }

    template <typename Use>
    void ForEachMarker(int kind, const Use& use) const {
        for (auto* marker = jpeg_.marker_list; marker != nullptr; marker = marker->next) {
            if (marker->marker == kind) use({marker->data, marker->data_length});
        }
    }

    std::vector<uint8_t> Profile() {
        JOCTET* icc = nullptr;
        unsigned size = 0;
        Run([&] {
            if (jpeg_.marker_list != nullptr) jpeg_read_icc_profile(&jpeg_, &icc, &size);
        });
        const std::unique_ptr<JOCTET, decltype(&std::free)> owner(icc, std::free);
        return icc == nullptr ? std::vector<uint8_t>() : std::vector<uint8_t>(icc, icc + size);
    }

  private:
    template <typename Info>
    static JpegHeaders& Of(Info* jpeg) {
        return *static_cast<JpegHeaders*>(jpeg->client_data);
    }
    template <typename Steps>
    void Run(const Steps& steps) {
        if (setjmp(escape_) == 0) steps();
    }

    void Fill() {
        const size_t count =
            position_ < kMostBytes ? source_.ReadAt(position_, buffer_).value_or(0) : 0;
        position_ += count;
        input_.next_input_byte = count != 0 ? buffer_.data() : kEndOfImage.data();
        input_.bytes_in_buffer = count != 0 ? count : kEndOfImage.size();
    }
    void Skip(long count) {
        const auto wanted = static_cast<size_t>(std::max(count, 0L));
        const size_t buffered = std::min(wanted, input_.bytes_in_buffer);
        input_.next_input_byte += buffered;
        input_.bytes_in_buffer -= buffered;
        position_ += wanted - buffered;
    }

    dib::ByteSource& source_;
    std::vector<uint8_t> buffer_;
    uint64_t position_ = 0;
    jpeg_decompress_struct jpeg_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr input_{};
    jmp_buf escape_{};
};

}  // namespace

Carried ReadJpegMetadata(dib::ByteSource& source) {
    JpegHeaders headers(source);
    headers.Read();
    Carried carried;
    headers.ForEachMarker(JPEG_APP0 + 1, [&](std::span<const uint8_t> data) {
        const bool isExif = data.size() > std::size(kExifName) &&
                            std::equal(std::begin(kExifName), std::end(kExifName), data.begin());
        if (!isExif || !carried.exif.empty()) return;
        carried.exif.assign(data.begin() + std::size(kExifName), data.end());
    });
    headers.ForEachMarker(JPEG_COM, [&](std::span<const uint8_t> data) {
        AddField(carried.fields, FieldKind::kComment, std::string(data.begin(), data.end()));
    });
    carried.profile = headers.Profile();
    return carried;
}

}  // namespace tessary::metadata
