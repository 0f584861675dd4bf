#include "plugin/opened_frames.h"

#include <algorithm>
#include <utility>

#include "app/base/text.h"

namespace tessary {
namespace {

SusieSource MemoryOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<LONG_PTR>(bytes.size()),
            susie::kSourceMemory};
}

}  // namespace

PictureFrames OpenedFrames::Tell(const PluginSource& source) {
    if (calls_.Address(SusieFunction::kOpenFrames) == nullptr) return {};
    susie::FrameList list{};
    void* frames = nullptr;
    const int32_t code =
        calls_.OpenFrames(source.isFile ? SusieSource{source.name.c_str(), 0, susie::kSourceFile}
                                        : MemoryOf(source.bytes),
                          list, frames);
    const bool hasClosed = frames == nullptr || calls_.CloseFrames(frames) != kResultCrashed;
    if (code == kResultCrashed || !hasClosed) calls_.LeaveFramesOut();
    // What is open is what later calls want.
    if (frames == nullptr || !hasClosed) return {};
    return FramesOf(list.kind, list.count, list.rounds);
}

bool OpenedFrames::IsOf(const PluginSource& source) const {
    if (!IsOpen() || source.isFile == name_.empty()) return false;
    if (source.isFile) {
        return source.name == name_ && stamp_ && stamp_ == ExactStampOf(FromAnsi(name_));
    }
    return (id_ != 0 && source.id == id_) || std::ranges::equal(source.bytes, bytes_);
}

int32_t OpenedFrames::Open(const PluginSource& source) {
    Close();
    // Before it is read: what changes meanwhile is opened anew.
    if (source.isFile) {
        name_ = source.name;
        stamp_ = ExactStampOf(FromAnsi(name_));
    } else {
        bytes_.assign(source.bytes.begin(), source.bytes.end());
        id_ = source.id;
    }
    susie::FrameList list{};
    const int32_t code = calls_.OpenFrames(
        source.isFile ? SusieSource{name_.c_str(), 0, susie::kSourceFile} : MemoryOf(bytes_), list,
        frames_);
    count_ = FramesOf(list.kind, list.count, list.rounds).count;
    return code;
}

int32_t OpenedFrames::Get(const PluginSource& source, uint32_t index, const RoomMaker& rooms,
                          std::optional<RoomForPicture>& filled, uint32_t& duration,
                          const ProgressRelay& progress) {
    filled = std::nullopt;
    duration = 0;
    if (calls_.Address(SusieFunction::kOpenFrames) == nullptr) return kResultNotExported;
    int32_t code = IsOf(source) ? int32_t{susie::kSuccess} : Open(source);
    if (code == susie::kSuccess) {
        // A file may have other frames by now than when it was decoded.
        code = index < count_ && IsOpen()
                   ? calls_.GetFrame(frames_, index, rooms, filled, duration, progress)
                   : int32_t{susie::kBrokenData};
    }
    duration = std::min(duration, kLongestFrame);
    // What a plug-in works with that has crashed is left as it is.
    if (code == kResultCrashed) Forget();
    return code;
}

void OpenedFrames::Forget() {
    frames_ = nullptr;
    count_ = 0;
    name_.clear();
    stamp_.reset();
    bytes_ = {};
    id_ = 0;
}

void OpenedFrames::Close() {
    if (IsOpen()) calls_.CloseFrames(frames_);
    Forget();
}

void OpenedFrames::CloseUnless(const PluginSource& source) {
    if (IsOpen() && !IsOf(source)) Close();
}

}  // namespace tessary
