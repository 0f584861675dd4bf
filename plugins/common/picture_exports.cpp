// The exported functions of a Susie picture plug-in (00IN), the same for all bundled ones. This is
// the outermost layer: nothing is thrown past it, and wrong arguments get a result code.
#include <algorithm>
#include <memory>

#include "helpers/susiectl/susie_interface.h"
#include "plugins/common/host_call.h"
#include "plugins/common/last_condition.h"
#include "plugins/common/local_picture.h"
#include "plugins/common/picture_plugin.h"
#include "plugins/common/plugin_info.h"
#include "plugins/common/room_picture.h"
#include "plugins/common/susie_source.h"

namespace tessary::spi {
namespace {

using codec::Result;

constexpr double kMetresPerInch = 0.0254;

uint16_t DotsPerInch(int32_t pelsPerMeter) {
    return static_cast<uint16_t>(std::clamp(pelsPerMeter * kMetresPerInch + 0.5, 0.0, 65535.0));
}

Result ReadPictureInfo(const char* source, LONG_PTR length, uint32_t flag,
                       susie::PictureInfo& info) {
    std::unique_ptr<dib::ByteSource> bytes;
    if (const Result opened = OpenSource(source, length, flag, bytes); opened != Result::kSuccess) {
        return opened;
    }
    codec::PictureForm form;
    const Result result = Codec().ReadForm(*bytes, form);
    if (result != Result::kSuccess) return result;
    info = {};
    info.width = static_cast<int32_t>(form.width);
    info.height = static_cast<int32_t>(form.height);
    info.xDensity = DotsPerInch(form.xPelsPerMeter);
    info.yDensity = DotsPerInch(form.yPelsPerMeter);
    info.colorDepth = static_cast<int16_t>(form.bitCount);
    return result;
}

Result DecodePicture(const char* source, LONG_PTR length, uint32_t flag,
                     codec::PictureTarget& picture, susie::ProgressCallback callback,
                     LONG_PTR userData, codec::Remark& remark) {
    std::unique_ptr<dib::ByteSource> bytes;
    if (const Result opened = OpenSource(source, length, flag, bytes); opened != Result::kSuccess) {
        return opened;
    }
    codec::Progress progress = HostProgress(callback, userData);
    const Result result = Codec().Decode(*bytes, picture, progress);
    if (result == Result::kBrokenData) {
        progress.Tell(codec::Condition::kDamaged, L"画像データが壊れています");
    }
    remark = progress.Told();
    return result;
}

int GetPictureGuarded(const char* source, LONG_PTR length, uint32_t flag, HLOCAL* info,
                      HLOCAL* bits, susie::ProgressCallback progress, LONG_PTR userData,
                      bool takesAlpha) {
    return GuardedAndTold([&](codec::Remark& remark) {
        if (info == nullptr || bits == nullptr) return Result::kInternalError;
        LocalPicture picture(takesAlpha);
        const Result result =
            DecodePicture(source, length, flag, picture, progress, userData, remark);
        if (result == Result::kSuccess) picture.Release(*info, *bits);
        return result;
    });
}

}  // namespace
}  // namespace tessary::spi

using namespace tessary;

extern "C" {

__declspec(dllexport) int __stdcall GetPluginInfo(int infoNumber, char* buffer, int bufferLength) {
    try {
        return spi::WritePluginInfo("00IN", infoNumber, buffer, bufferLength);
    } catch (...) {
        return 0;
    }
}

__declspec(dllexport) int __stdcall IsSupported(const char* fileName, const void* header) {
    try {
        spi::HeaderBlock block;
        return spi::Codec().IsSupported(spi::HeaderBytes(fileName, header, block)) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

__declspec(dllexport) int __stdcall GetPictureInfo(const char* source, LONG_PTR length,
                                                   uint32_t flag, susie::PictureInfo* info) {
    if (info == nullptr) return susie::kInternalError;
    return spi::Guarded([&] { return spi::ReadPictureInfo(source, length, flag, *info); });
}

__declspec(dllexport) int __stdcall GetPicture(const char* source, LONG_PTR length, uint32_t flag,
                                               HLOCAL* info, HLOCAL* bits,
                                               susie::ProgressCallback progress,
                                               LONG_PTR userData) {
    return spi::GetPictureGuarded(source, length, flag, info, bits, progress, userData, false);
}

__declspec(dllexport) int __stdcall GetPictureWithAlpha(const char* source, LONG_PTR length,
                                                        uint32_t flag, HLOCAL* info, HLOCAL* bits,
                                                        susie::ProgressCallback progress,
                                                        LONG_PTR userData) {
    return spi::GetPictureGuarded(source, length, flag, info, bits, progress, userData, true);
}

__declspec(dllexport) int __stdcall GetPictureInto(const char* source, LONG_PTR length,
                                                   uint32_t flag, susie::PictureRoom* room, void*,
                                                   susie::ProgressCallback progress,
                                                   LONG_PTR userData) {
    return spi::GuardedAndTold([&](codec::Remark& remark) {
        if (!spi::IsRoom(room)) return codec::Result::kInternalError;
        spi::RoomPicture picture(*room);
        return spi::DecodePicture(source, length, flag, picture, progress, userData, remark);
    });
}

__declspec(dllexport) int __stdcall GetPreview(const char*, LONG_PTR, uint32_t, HLOCAL*, HLOCAL*,
                                               susie::ProgressCallback, LONG_PTR) {
    spi::KeepCondition({});
    return susie::kNotImplemented;
}

__declspec(dllexport) int __stdcall GetLastCondition(wchar_t* text, int length) {
    return spi::AnswerCondition(text, length);
}

}  // extern "C"
