#include "plugins/iftesswebp/webp_pixels.h"

#include <webp/decode.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace tessary::webp {
namespace {

using codec::Result;

// How much is decoded between two looks at whether to go on.
constexpr size_t kStep = size_t{64} << 10;

struct DecoderDeleter {
    void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};

Result ResultOf(VP8StatusCode status) {
    switch (status) {
        case VP8_STATUS_OK:
            return Result::kSuccess;
        case VP8_STATUS_OUT_OF_MEMORY:
            return Result::kOutOfMemory;
        case VP8_STATUS_USER_ABORT:
            return Result::kAborted;
        case VP8_STATUS_INVALID_PARAM:
            return Result::kInternalError;
        default:
            return Result::kBrokenData;
    }
}

// A picture of another size than it is said to have would not fit its place.
bool HasSize(const WebPBitstreamFeatures& features, const PixelPlace& place) {
    return static_cast<uint32_t>(features.width) == place.width &&
           static_cast<uint32_t>(features.height) == place.height && features.has_animation == 0;
}

}  // namespace

Result DecodePixels(std::span<const uint8_t> picture, const PixelPlace& place,
                    codec::Progress& progress, uint32_t& rows) {
    rows = 0;
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0) return Result::kInternalError;
    const VP8StatusCode looked = WebPGetFeatures(picture.data(), picture.size(), &config.input);
    if (looked != VP8_STATUS_OK) {
        const Result result = ResultOf(looked);
        return result == Result::kSuccess ? Result::kBrokenData : result;
    }
    if (!HasSize(config.input, place)) return Result::kBrokenData;
    config.options.use_threads = 1;
    config.output.colorspace = place.haveAlpha ? MODE_BGRA : MODE_BGR;
    config.output.is_external_memory = 1;
    WebPRGBABuffer& buffer = config.output.u.RGBA;
    buffer.rgba = place.first;
    buffer.stride = static_cast<int>(place.stride);
    buffer.size = static_cast<size_t>(std::abs(place.stride)) * place.height;

    const std::unique_ptr<WebPIDecoder, DecoderDeleter> decoder(WebPIDecode(nullptr, 0, &config));
    if (decoder == nullptr) return Result::kOutOfMemory;
    VP8StatusCode status = VP8_STATUS_SUSPENDED;
    for (size_t known = 0; status == VP8_STATUS_SUSPENDED && known < picture.size();) {
        if (!progress.Report(rows, place.height)) return Result::kAborted;
        known += std::min(kStep, picture.size() - known);
        status = WebPIUpdate(decoder.get(), picture.data(), known);
        int last = 0;
        if (WebPIDecGetRGB(decoder.get(), &last, nullptr, nullptr, nullptr) != nullptr)
            rows = static_cast<uint32_t>(std::max(last, 0));
    }
    if (status == VP8_STATUS_OK) rows = place.height;
    return ResultOf(status);
}

}  // namespace tessary::webp
