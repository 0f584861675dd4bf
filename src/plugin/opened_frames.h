// The frames of a source that a plug-in has open (docs/plugin-extension.md).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "picture/picture_frames.h"
#include "plugin/file_stamp.h"
#include "plugin/plugin_connection.h"
#include "plugin/susie_calls.h"

namespace tessary {

// One source at a time, which stays open for its next frame.
class OpenedFrames {
  public:
    // `calls`: of the plug-in; they must outlive this.
    explicit OpenedFrames(SusieCalls& calls) : calls_(calls) {}
    OpenedFrames(const OpenedFrames&) = delete;
    OpenedFrames& operator=(const OpenedFrames&) = delete;
    ~OpenedFrames() { Close(); }

    // What frames a source has. Nothing stays open for that.
    PictureFrames Tell(const PluginSource& source);

    // As SusieCalls::GetFrame; the source is opened if it is not, or was touched since. Bytes are
    // copied for that: the plug-in may read them until they are closed.
    int32_t Get(const PluginSource& source, uint32_t index, const RoomMaker& rooms,
                std::optional<RoomForPicture>& filled, uint32_t& duration,
                const ProgressRelay& progress);

    bool IsOpen() const { return frames_ != nullptr; }
    void Close();
    void CloseUnless(const PluginSource& source);

  private:
    bool IsOf(const PluginSource& source) const;
    int32_t Open(const PluginSource& source);
    void Forget();

    SusieCalls& calls_;
    void* frames_ = nullptr;  // the plug-in's
    uint32_t count_ = 0;
    std::string name_;                // of the file; empty: bytes
    std::optional<FileStamp> stamp_;  // of the file when it was opened
    std::vector<uint8_t> bytes_;
    uint32_t id_ = 0;  // of the bytes
};

}  // namespace tessary
