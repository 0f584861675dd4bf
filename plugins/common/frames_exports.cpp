// The exported functions of frames (docs/plugin-extension.md), for bundled plug-ins that have them.
#include <memory>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "plugins/common/host_call.h"
#include "plugins/common/last_condition.h"
#include "plugins/common/picture_plugin.h"
#include "plugins/common/room_picture.h"
#include "plugins/common/susie_source.h"

namespace tessary::spi {
namespace {

using codec::Result;

// What a host was given for `frames`.
struct OpenedFrames {
    std::string name;  // of a file, which is opened for each call; empty: a block
    const char* block;
    LONG_PTR length;
    uint32_t flag;
    std::unique_ptr<codec::FrameReader> reader;

    Result Open(std::unique_ptr<dib::ByteSource>& bytes) const {
        return OpenSource(name.empty() ? block : name.c_str(), length, flag, bytes);
    }
};

Result Open(OpenedFrames opened, susie::FrameList& list, void*& frames) {
    std::unique_ptr<dib::ByteSource> bytes;
    if (const Result result = opened.Open(bytes); result != Result::kSuccess) return result;
    opened.reader = Codec().OpenFrames(*bytes);
    if (opened.reader == nullptr) return Result::kSuccess;
    const codec::FrameSet set = opened.reader->Frames();
    list.kind = static_cast<int32_t>(set.kind);
    list.count = set.count;
    list.rounds = set.rounds;
    frames = std::make_unique<OpenedFrames>(std::move(opened)).release();
    return Result::kSuccess;
}

Result Decode(OpenedFrames& opened, uint32_t index, uint32_t& duration, susie::PictureRoom& room,
              codec::Progress& progress) {
    if (index >= opened.reader->Frames().count) return Result::kInternalError;
    std::unique_ptr<dib::ByteSource> bytes;
    if (const Result result = opened.Open(bytes); result != Result::kSuccess) return result;
    RoomPicture picture(room);
    return opened.reader->Decode(*bytes, index, picture, progress, duration);
}

}  // namespace
}  // namespace tessary::spi

using namespace tessary;

extern "C" {

__declspec(dllexport) int __stdcall OpenFrames(const char* source, LONG_PTR length, uint32_t flag,
                                               susie::FrameList* list, void** frames) {
    if (source == nullptr || list == nullptr || frames == nullptr || list->size < sizeof(*list)) {
        return susie::kInternalError;
    }
    *list = {list->size, 0, 0, 0};
    *frames = nullptr;
    return spi::Guarded([&] {
        const bool isFile = (flag & 7) == susie::kSourceFile;
        return spi::Open({isFile ? source : "", source, length, flag, nullptr}, *list, *frames);
    });
}

__declspec(dllexport) int __stdcall GetFrame(void* frames, uint32_t index, uint32_t* duration,
                                             susie::PictureRoom* room, void*,
                                             susie::ProgressCallback callback, LONG_PTR userData) {
    return spi::GuardedAndTold([&](codec::Remark& remark) {
        if (frames == nullptr || duration == nullptr || !spi::IsRoom(room)) {
            return codec::Result::kInternalError;
        }
        codec::Progress progress = spi::HostProgress(callback, userData);
        const codec::Result result = spi::Decode(*static_cast<spi::OpenedFrames*>(frames), index,
                                                 *duration, *room, progress);
        remark = progress.Told();
        return result;
    });
}

__declspec(dllexport) int __stdcall CloseFrames(void* frames) {
    const std::unique_ptr<spi::OpenedFrames> closed(static_cast<spi::OpenedFrames*>(frames));
    return susie::kSuccess;
}

}  // extern "C"
