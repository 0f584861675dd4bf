#include "plugins/iftesswebp/webp_file.h"

#include <webp/demux.h>

#include <array>
#include <memory>

namespace tessary::webp {
namespace {

struct DemuxDeleter {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, DemuxDeleter>;

// The bytes of the first chunk of that name; they lie in the file.
std::span<const uint8_t> ChunkOf(const WebPDemuxer* demuxer, const char* name) {
    WebPChunkIterator chunk{};
    std::span<const uint8_t> bytes;
    if (WebPDemuxGetChunk(demuxer, name, 1, &chunk) != 0)
        bytes = {chunk.chunk.bytes, chunk.chunk.size};
    WebPDemuxReleaseChunkIterator(&chunk);
    return bytes;
}

// Some programs put the name of a JPEG's marker before it.
codec::ExifEntries ExifOf(std::span<const uint8_t> chunk) {
    const bool isMarker = chunk.size() > 4 && chunk[0] == 'E' && chunk[1] == 'x';
    return isMarker ? codec::ReadExifMarker(chunk) : codec::ReadExif(chunk);
}

std::optional<color::Profile> ProfileOf(const WebPDemuxer* demuxer,
                                        const codec::ExifEntries& exif) {
    auto profile = color::Profile::FromIcc(ChunkOf(demuxer, "ICCP"));
    if (profile && profile->ModelOf() == color::Model::kRgb) return profile;
    return exif.isAdobeRgb ? std::optional(color::Profile::AdobeRgb()) : std::nullopt;
}

std::vector<WebpFrame> FramesOf(const WebPDemuxer* demuxer, std::span<const uint8_t> bytes) {
    std::vector<WebpFrame> frames;
    WebPIterator each{};
    if (WebPDemuxGetFrame(demuxer, 1, &each) != 0) {
        do {
            frames.push_back(
                {.offset = static_cast<size_t>(each.fragment.bytes - bytes.data()),
                 .size = each.fragment.size,
                 .place = {static_cast<uint32_t>(each.x_offset),
                           static_cast<uint32_t>(each.y_offset), static_cast<uint32_t>(each.width),
                           static_cast<uint32_t>(each.height)},
                 .duration = static_cast<uint32_t>(each.duration),
                 .clears = each.dispose_method == WEBP_MUX_DISPOSE_BACKGROUND,
                 .isBlended = each.blend_method == WEBP_MUX_BLEND,
                 .isWhole = each.complete != 0});
        } while (WebPDemuxNextFrame(&each) != 0);
    }
    WebPDemuxReleaseIterator(&each);
    return frames;
}

}  // namespace

std::optional<WebpFile> ReadWebp(std::span<const uint8_t> bytes) {
    const WebPData data{bytes.data(), bytes.size()};
    WebPDemuxState state{};
    const Demuxer demuxer(WebPDemuxPartial(&data, &state));
    if (demuxer == nullptr || state < WEBP_DEMUX_PARSED_HEADER) return std::nullopt;
    WebpFile file;
    file.width = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH);
    file.height = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT);
    const uint32_t flags = WebPDemuxGetI(demuxer.get(), WEBP_FF_FORMAT_FLAGS);
    file.hasAlpha = (flags & ALPHA_FLAG) != 0;
    file.isAnimation = (flags & ANIMATION_FLAG) != 0;
    file.isCutShort = state != WEBP_DEMUX_DONE;
    file.rounds = WebPDemuxGetI(demuxer.get(), WEBP_FF_LOOP_COUNT);
    file.frames = FramesOf(demuxer.get(), bytes);
    file.exif = ExifOf(ChunkOf(demuxer.get(), "EXIF"));
    file.profile = ProfileOf(demuxer.get(), file.exif);
    return file;
}

}  // namespace tessary::webp
