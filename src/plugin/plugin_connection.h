// The way to one plug-in, wherever it runs: what can be asked of it, as whole operations.
//
// What a plug-in's functions, blocks and windows need is on the other side of this interface; what
// is decided and remembered about the plug-in is on this side (clsSusie).
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "picture/picture.h"
#include "picture/picture_frames.h"
#include "plugin/archive_members.h"
#include "plugin/file_patterns.h"
#include "plugin/plugin_condition.h"
#include "plugin/susie_progress.h"

namespace tessary {

// What a plug-in is good for, as its exports tell.
constexpr int32_t kStylePicture = 0;
constexpr int32_t kStyleArchive = 1;
constexpr int32_t kStyleNone = 255;

// Results of an operation beside the plug-in's own (susie::Result and others).
constexpr int32_t kResultUnexpected = 20;   // an error of ours around the call
constexpr int32_t kResultNotExported = 21;  // the plug-in does not have the function
constexpr int32_t kResultStopped = 22;      // the plug-in was not called: PluginsAreStopped
constexpr int32_t kResultCrashed = 255;     // the plug-in crashed and was caught

// What a plug-in is to read. Owns no bytes.
struct PluginSource {
    // The file's name, or where the bytes come from, in the system's code page: as plug-ins take
    // it.
    std::string name{};
    std::span<const uint8_t> bytes{};
    bool isFile = true;
    uint32_t id = 0;  // of these very bytes, which may come again; 0: they have none
};

// An error's message, and the function that it happened in; empty: there was none.
struct PluginFault {
    std::wstring message{};
    std::wstring function{};
};

// What has become of the plug-in's own process, where it has one.
enum class ProcessEnd {
    kNone,
    kDied,    // it has ended in the middle
    kSilent,  // it gave no sign of life, and was ended
};

// How an operation has ended.
struct PluginAnswer {
    int32_t code = kResultUnexpected;  // the plug-in's own, or one of kResult…
    PluginCondition condition{};       // what the plug-in has told of it beside the code
    PluginFault fault{};               // what went wrong, for the user
    ProcessEnd end = ProcessEnd::kNone;

    bool HasSucceeded() const { return code == susie::kSuccess; }
    bool HasCrashed() const { return code == kResultCrashed; }
};

// What is known of a plug-in: what it exports and tells about itself.
struct PluginTraits {
    int32_t style = kStyleNone;
    bool hasSettings = false;  // it has a settings window
    std::wstring productName{};
    FilePatterns patterns{};

    bool operator==(const PluginTraits&) const = default;
};
struct PluginDescription : PluginAnswer, PluginTraits {};

// What came of loading a plug-in's file.
struct LoadedPlugin : PluginAnswer {
    int32_t style = kStyleNone;
    // Why the system refused it; 0 when it did not, or nobody knows; susiectl::kErrorCrashed when
    // the plug-in crashed, one of no_host.h when its process could not be started.
    uint32_t loadError = 0;
};

// A picture's size in pixels and its bits per pixel; all are -1 when the plug-in does not tell.
struct PictureSize {
    int32_t width = -1;
    int32_t height = -1;
    int32_t colorDepth = -1;
};
struct MeasuredPicture : PluginAnswer {
    PictureSize size{};
};

// How a picture is asked for: some plug-ins are quicker for a preview, under another name; and some
// can leave its colours as they are stored, with their profile, and need not convert them.
enum class DecodeKind { kPreview, kFull, kFullInOwnColors };
struct DecodeWish {
    // From here on a kind alone will do.
    DecodeWish(DecodeKind wanted, uint32_t enoughPixels = 0) : kind(wanted), enough(enoughPixels) {}

    DecodeKind kind;
    // Above 0: the picture is wanted alone, and may come smaller, where the plug-in is quicker with
    // that, with a longer side of so many pixels at least.
    uint32_t enough;
};

struct DecodedPicture : PluginAnswer {
    Picture picture{};        // empty after a success: what came is no picture
    bool wasStopped = false;  // the plug-in was asked to stop
    PictureFrames frames{};   // of the source; nobody asks for them for a preview
};

// A frame or page of a source, as a whole picture.
struct DecodedFrame : DecodedPicture {
    uint32_t duration = 0;  // to be shown so long, in milliseconds, as the file says; at most
                            // kLongestFrame; 0: it does not say
};

struct ListedArchive : PluginAnswer {
    // The members. They may be known though the plug-in has not succeeded; nothing: there is no
    // list.
    std::optional<ArchiveMembers> members{};
};

// A member's bytes, in whatever memory.
class MemberBytes {
  public:
    MemberBytes() = default;
    explicit MemberBytes(OwnedBlock block) : block_(std::move(block)) {}

    // The bytes in a block of local memory; empty when there are none.
    OwnedBlock ReleaseBlock() { return std::move(block_); }

  private:
    OwnedBlock block_;
};

struct ExtractedMember : PluginAnswer {
    MemberBytes bytes{};      // of one that was extracted to memory
    bool wasStopped = false;  // the plug-in was asked to stop
};

// One plug-in. It is not loaded at first. Every operation but Load and Unload is for a plug-in that
// is loaded; none of them throws for what a plug-in does. The user-interface thread's.
class PluginConnection {
  public:
    PluginConnection() = default;
    PluginConnection(const PluginConnection&) = delete;
    PluginConnection& operator=(const PluginConnection&) = delete;
    // Unloads it.
    virtual ~PluginConnection() = default;

    // Loads the plug-in's file and looks at its exports. Of a file that is no usable plug-in the
    // style is kStyleNone; it may be loaded all the same.
    virtual LoadedPlugin Load() = 0;
    virtual bool IsLoaded() const = 0;
    // Whether its file is really in the memory of a process: one that had it loaded may have ended.
    virtual bool IsInMemory() const { return IsLoaded(); }
    // Frees the file, with the windows of the plug-in.
    virtual PluginAnswer Unload() = 0;
    // Has the file stay loaded from now on, for good.
    virtual void LeaveLoaded() = 0;
    // Whether the plug-in shows windows of its own or runs threads.
    virtual bool IsInUse() const = 0;

    // The file that the call log names beside the plug-in; empty when none is bound.
    virtual void SetBoundFile(const std::wstring& path) = 0;

    // What the plug-in tells of itself now.
    virtual PluginDescription Describe() = 0;
    // Whether it takes the source: code 1. Of bytes the beginning is enough.
    virtual PluginAnswer Supports(const PluginSource& source) = 0;
    // The size of the source's picture. The decoded picture may differ.
    virtual MeasuredPicture Measure(const PluginSource& source) = 0;
    virtual DecodedPicture Decode(const PluginSource& source, DecodeWish wish,
                                  const SusieProgress& progress) = 0;
    // A frame of those that Decode has told of, from 0. In their order each takes one step; any may
    // be asked for. The source may stay open on the other side for a while.
    virtual DecodedFrame DecodeFrame(const PluginSource& source, uint32_t index,
                                     const SusieProgress& progress) = 0;
    virtual ListedArchive List(const PluginSource& archive) = 0;
    // Extracts a member of the list to memory, or into an existing folder, named in the system's
    // code page and without a separator at its end.
    virtual ExtractedMember Extract(const PluginSource& archive, const susie::FileInfo& member,
                                    const std::optional<std::string>& folder,
                                    const SusieProgress& progress) = 0;
    // Opens the settings window.
    virtual PluginAnswer Configure(HWND parent) = 0;
};

// A way to the plug-in of that full path: in this process, unless a connector was set.
std::unique_ptr<PluginConnection> ConnectTo(const std::wstring& plugin);

// Has all further connections made by `connector`; empty: in this process.
using PluginConnector =
    std::function<std::unique_ptr<PluginConnection>(const std::wstring& plugin)>;
void SetPluginConnector(PluginConnector connector);

// Whether plug-ins can be called at all; without susiectl.dll they cannot.
bool CanCallPlugins();

}  // namespace tessary
