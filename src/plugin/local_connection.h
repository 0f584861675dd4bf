// A plug-in in this process.
#pragma once

#include <windows.h>

#include "plugin/opened_frames.h"
#include "plugin/plugin_connection.h"
#include "plugin/susie_calls.h"

namespace tessary {

// Calls the plug-in through susiectl.dll, with all that SusieCalls does about it.
class LocalConnection final : public PluginConnection {
  public:
    // `plugin`: the full path of its file.
    explicit LocalConnection(const std::wstring& plugin) : path_(plugin), calls_(plugin) {}
    ~LocalConnection() override;

    LoadedPlugin Load() override;
    bool IsLoaded() const override { return module_ != nullptr; }
    PluginAnswer Unload() override;
    void LeaveLoaded() override;
    bool IsInUse() const override { return module_ != nullptr && SusieCalls::IsInUse(module_); }

    // The plug-in is not asked for its GetLastCondition.
    void LeaveConditionOut() { calls_.LeaveConditionOut(); }
    // Nor for frames.
    void LeaveFramesOut() { calls_.LeaveFramesOut(); }

    // Whether a source is open for its frames; closes it.
    bool HasFrames() const { return frames_.IsOpen(); }
    void CloseFrames() { frames_.Close(); }

    void SetBoundFile(const std::wstring& path) override { calls_.SetBoundFile(path); }

    PluginDescription Describe() override;
    PluginAnswer Supports(const PluginSource& source) override;
    MeasuredPicture Measure(const PluginSource& source) override;
    DecodedPicture Decode(const PluginSource& source, DecodeWish wish,
                          const SusieProgress& progress) override;
    // The same into room of the caller's, if the plug-in can do that: then the picture lies there,
    // and belongs to whoever has made the room.
    DecodedPicture Decode(const PluginSource& source, DecodeWish wish,
                          const SusieProgress& progress, const RoomMaker& rooms);
    DecodedFrame DecodeFrame(const PluginSource& source, uint32_t index,
                             const SusieProgress& progress) override;
    DecodedFrame DecodeFrame(const PluginSource& source, uint32_t index,
                             const SusieProgress& progress, const RoomMaker& rooms);
    ListedArchive List(const PluginSource& archive) override;
    ExtractedMember Extract(const PluginSource& archive, const susie::FileInfo& member,
                            const std::optional<std::string>& folder,
                            const SusieProgress& progress) override;
    PluginAnswer Configure(HWND parent) override;

  private:
    PluginAnswer Answer(int32_t code);
    PluginAnswer AnswerTold(int32_t code);
    DecodedPicture WithFrames(DecodedPicture decoded, const PluginSource& source, DecodeWish wish);

    std::wstring path_;
    SusieCalls calls_;
    OpenedFrames frames_{calls_};
    HMODULE module_ = nullptr;  // our own reference to the loaded file
    int32_t style_ = kStyleNone;
};

}  // namespace tessary
