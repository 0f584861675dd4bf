#include "picture/frames/plugin_frames.h"

#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "plugin/call_watch.h"
#include "plugin/long_run.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

class PluginFrames final : public FrameReader {
  public:
    explicit PluginFrames(ConnectorMaker connect) : connect_(std::move(connect)) {}

    // A file that was changed since is another animation.
    std::optional<Frame> Read(const Animation& animation, uint32_t index,
                              const std::function<bool()>& isWanted) override {
        const CallWatch watch(
            [&](const WaitedCall&) { return isWanted() ? CallWish::kGoesOn : CallWish::kStops; });
        const LongRun run;
        std::optional<Frame> frame;
        Trapped([&] {
            if (ExactStampOf(animation.entry.path) != animation.stamp) return;
            clsSusie* const plugin = Bound(animation);
            if (plugin == nullptr) return;
            Frame read;
            read.picture = plugin->DecodeFrame(
                index, [&](int, int) { return isWanted(); }, read.milliseconds);
            read.damage = plugin->Damage();
            frame = std::move(read);
        });
        if (!frame) Unbind();
        return frame;
    }

  private:
    // The plug-in, bound to what is played; null when it is not there any more.
    clsSusie* Bound(const Animation& animation) {
        if (!plugins_ || *known_ != *animation.plugins) {
            Unbind();
            known_ = animation.plugins;
            plugins_.emplace(connect_(), *known_);
        }
        clsSusie* const plugin = SusieCollection().Item(animation.plugin);
        if (plugin == nullptr ||
            (bound_ == animation.entry && stamp_ == animation.stamp && plugin->IsBound())) {
            return plugin;
        }
        Unbind();
        animation.entry.member == 0 ? plugin->SetFile(animation.entry.path)
                                    : BindMember(*plugin, animation.entry);
        bound_ = animation.entry;
        stamp_ = animation.stamp;
        return plugin;
    }

    void BindMember(clsSusie& plugin, const AheadEntry& entry) {
        clsSusie* const archive = SusieCollection().ArchiveToList(entry.path);
        if (archive == nullptr) return;
        const std::wstring name = FileNameOf(archive->Files(entry.member));
        content_ = archive->DecodeArchive(entry.member, [](int, int) { return IsCallWanted(); });
        plugin.SetMemoryHandle(content_.Get(), name);
    }

    void Unbind() {
        if (plugins_) SusieCollection().UnloadFile();
        bound_ = {};
        content_ = {};
    }

    ConnectorMaker connect_;
    DivertedErrors untold_{[](const RaisedError&) {}};
    OwnedBlock content_;  // of an archive's member; plug-ins are bound to it
    std::optional<OwnPlugins> plugins_;
    std::shared_ptr<const KnownPlugins> known_;
    AheadEntry bound_{};
    FileStamp stamp_{};
};

}  // namespace

FrameReaderMaker PluginFrameReaders(ConnectorMaker connect) {
    return [connect = std::move(connect)] { return std::make_unique<PluginFrames>(connect); };
}

}  // namespace tessary
