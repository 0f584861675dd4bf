#include "host32/host_service.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "app/base/error.h"
#include "app/base/text.h"
#include "helpers/files/file_source.h"
#include "helpers/metadata/file_metadata.h"
#include "host32/plugin_messages.h"
#include "plugin/plugin_state.h"

namespace tessary {
namespace {

// How often the program is asked whether to go on, in milliseconds: each time costs a tenth of one,
// and some plug-ins tell of every row.
constexpr ULONGLONG kProgressPause = 10;

// How long a source stays open for its next frame, in milliseconds.
constexpr DWORD kFramesStay = 10'000;

// Pixel rows are read fastest from there.
constexpr uint64_t kBitsAlignment = 64;

HostReply ReplyWith(const PluginAnswer& answer) {
    HostReply reply;
    reply.code = answer.code;
    reply.condition = answer.condition.kind;
    reply.conditionText = answer.condition.text;
    reply.faultMessage = answer.fault.message;
    reply.faultFunction = answer.fault.function;
    return reply;
}

void Copy(std::span<const uint8_t> from, std::span<uint8_t> to) {
    if (!from.empty()) std::memcpy(to.data(), from.data(), from.size());
}

}  // namespace

HostService::HostService(ChannelEnd channel, const ChannelHandles& handles)
    : channel_(std::move(channel)),
      notes_(channel_.Notes()),
      request_(handles.request),
      answer_(handles.answer),
      program_(handles.program) {
    NoteCallsIn(notes_);
}

bool HostService::WaitForRequest() {
    const std::array<HANDLE, 2> handles{request_, program_};
    for (;;) {
        const bool hasFrames =
            !PluginCallUnderWay() && std::ranges::any_of(plugins_, [](const auto& each) {
                return each.second->connection.HasFrames();
            });
        const DWORD signalled = MsgWaitForMultipleObjects(
            2, handles.data(), FALSE, hasFrames ? kFramesStay : INFINITE, QS_ALLINPUT);
        if (signalled == WAIT_OBJECT_0) return true;
        if (signalled == WAIT_TIMEOUT) {
            CloseFrames();
            continue;
        }
        if (signalled == WAIT_FAILED) notes_.OnCall({kWindowCall, lastAsked_, {}});
        if (signalled != WAIT_OBJECT_0 + 2) return false;
        HandleMessages(notes_);
    }
}

void HostService::CloseFrames() {
    for (const auto& [path, connected] : plugins_)
        connected->connection.CloseFrames();
    state_.PutBack();
}

std::optional<HostRequest> HostService::TakeRequest() const {
    const auto message = channel_.Message();
    return channel_.Signal() == ChannelSignal::kRequest && message ? RequestOf(*message)
                                                                   : std::nullopt;
}

void HostService::Run() {
    while (WaitForRequest()) {
        const std::optional<HostRequest> request = TakeRequest();
        if (!request) return;
        spilled_.reset();
        lastAsked_ = request->plugin;
        lastProgress_ = 0;
        goesOn_ = true;
        HostReply failed;
        failed.code = kResultUnexpected;
        HostReply reply = Trapped(std::move(failed), [&] { return Carried(*request); });
        state_.PutBack();
        Answer(std::move(reply));
        if (request->operation == HostOperation::kEnd) return;
    }
}

LocalConnection& HostService::ConnectionOf(const std::wstring& plugin, bool loads) {
    std::unique_ptr<Connected>& connected = plugins_[ToUpper(plugin)];
    if (connected == nullptr) connected.reset(new Connected{LocalConnection(plugin)});
    LocalConnection& connection = connected->connection;
    if (loads && !connection.IsLoaded() && !std::exchange(connected->isTried, true)) {
        connection.Load();
    }
    return connection;
}

HostReply HostService::Carried(const HostRequest& request) {
    const bool loads = request.operation > HostOperation::kIsInUse;
    if (request.operation == HostOperation::kBegin) return {};
    if (request.operation == HostOperation::kEnd) {
        plugins_.clear();
        return {};
    }
    for (const uint32_t id : request.returned)
        stock_.Return(id);
    if (request.operation == HostOperation::kTurnJpeg) return TurnJpeg(request);
    if (request.operation == HostOperation::kMetadata) return ReadMetadata(request);
    LocalConnection& plugin = ConnectionOf(request.plugin, loads);
    PluginSource source{.name = request.sourceName, .bytes = {}, .isFile = request.isFile};
    const std::optional<Section> bytes = BytesOfSource(request);
    if (bytes) source.bytes = bytes->Bytes();
    source.id = request.bytes.id;
    if (!request.tellsCondition) plugin.LeaveConditionOut();
    if (!request.tellsFrames) plugin.LeaveFramesOut();
    switch (request.operation) {
        case HostOperation::kLoad:
            return Load(request);
        case HostOperation::kUnload:
            return ReplyWith(plugin.Unload());
        case HostOperation::kLeaveLoaded:
            plugin.LeaveLoaded();
            return {};
        case HostOperation::kIsInUse: {
            HostReply reply;
            reply.isInUse = plugin.IsInUse();
            return reply;
        }
        case HostOperation::kDescribe:
            return Describe(plugin);
        case HostOperation::kSupports:
            return ReplyWith(plugin.Supports(source));
        case HostOperation::kMeasure:
            return Measure(plugin, source);
        case HostOperation::kDecode:
            return Decode(plugin, source, request);
        case HostOperation::kFrame:
            return Frame(plugin, source, request);
        case HostOperation::kList:
            return List(plugin, source);
        case HostOperation::kExtract:
            return Extract(plugin, source, request);
        default: {
            const PluginAnswer answer =
                plugin.Configure(reinterpret_cast<HWND>(static_cast<uintptr_t>(request.parent)));
            AllowSetForegroundWindow(ASFW_ANY);  // back to the program's window
            return ReplyWith(answer);
        }
    }
}

std::optional<Section> HostService::BytesOfSource(const HostRequest& request) {
    const bool isKept = request.bytes.id != 0 && request.bytes.id == lent_.id;
    // A file has taken the place of what was asked about.
    const bool isFile = request.isFile && !request.sourceName.empty();
    if (!isKept && (request.bytes.handle != 0 || isFile)) lent_ = {};
    if (request.bytes.handle == 0) return std::nullopt;
    if (!isKept) {
        const auto handle = reinterpret_cast<HANDLE>(static_cast<uintptr_t>(request.bytes.handle));
        lent_ = {UniqueSection(handle), request.bytes.id};
    }
    HANDLE own = nullptr;
    DuplicateHandle(GetCurrentProcess(), lent_.section.Get(), GetCurrentProcess(), &own, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    if (request.bytes.id == 0) lent_ = {};
    return Section::Open(UniqueSection(own), request.bytes.size, Section::Access::kPrivateWrite);
}

HostReply HostService::Load(const HostRequest& request) {
    LocalConnection& plugin = ConnectionOf(request.plugin, false);
    const LoadedPlugin loaded = plugin.Load();
    HostReply reply = ReplyWith(loaded);
    reply.style = loaded.style;
    reply.loadError = loaded.loadError;
    reply.isLoaded = plugin.IsLoaded();
    return reply;
}

HostReply HostService::Describe(LocalConnection& plugin) {
    const PluginDescription told = plugin.Describe();
    HostReply reply = ReplyWith(told);
    reply.style = told.style;
    reply.hasSettings = told.hasSettings;
    reply.productName = told.productName;
    reply.patterns = told.patterns;
    return reply;
}

HostReply HostService::Measure(LocalConnection& plugin, const PluginSource& source) {
    const MeasuredPicture measured = plugin.Measure(source);
    HostReply reply = ReplyWith(measured);
    reply.width = measured.size.width;
    reply.height = measured.size.height;
    reply.colorDepth = measured.size.colorDepth;
    return reply;
}

HostReply HostService::Decode(LocalConnection& plugin, const PluginSource& source,
                              const HostRequest& request) {
    const DecodeKind kind = request.isPreview     ? DecodeKind::kPreview
                            : request.inOwnColors ? DecodeKind::kFullInOwnColors
                                                  : DecodeKind::kFull;
    PictureFrames frames;
    HostReply reply = WithPicture([&](const RoomMaker& rooms) {
        DecodedPicture decoded =
            plugin.Decode(source, {kind, request.enough}, ProgressOf(request), rooms);
        frames = decoded.frames;
        return decoded;
    });
    reply.frameKind = static_cast<int32_t>(frames.kind);
    reply.frameCount = frames.count;
    reply.frameRounds = frames.rounds;
    return reply;
}

HostReply HostService::Frame(LocalConnection& plugin, const PluginSource& source,
                             const HostRequest& request) {
    uint32_t duration = 0;
    HostReply reply = WithPicture([&](const RoomMaker& rooms) -> DecodedPicture {
        DecodedFrame decoded =
            plugin.DecodeFrame(source, request.frame, ProgressOf(request), rooms);
        duration = decoded.duration;
        return decoded;
    });
    reply.duration = duration;
    return reply;
}

HostReply HostService::WithPicture(const PictureMaker& decode) {
    std::optional<PictureSection> section;
    const auto giveBack = [&] {
        if (section) stock_.Return(section->section.wire.id);
        section.reset();
    };
    const auto rooms = [&](size_t infoSize, size_t bitsSize) -> std::optional<RoomForPicture> {
        giveBack();
        section = TakeForPicture(infoSize, bitsSize);
        if (!section) return std::nullopt;
        return RoomForPicture{section->section.bytes.first(infoSize), section->Bits(),
                              section->section.isNew};
    };
    const DecodedPicture decoded = decode(rooms);
    HostReply reply = ReplyWith(decoded);
    reply.wasStopped = decoded.wasStopped;
    if (!decoded.picture) {
        // Threads of one that has crashed may still write there; this host is not used again.
        if (!decoded.HasCrashed()) giveBack();
        return reply;
    }
    const auto info = decoded.picture.Info();
    const auto profile = decoded.picture.Profile();
    const auto bits = decoded.picture.Bits();
    if (section && bits.data() == section->Bits().data()) {
        // The block that was asked for has held the profile too.
        Copy(profile, section->section.bytes.subspan(info.size()));
    } else {
        giveBack();
        section = TakeForPicture(info.size() + profile.size(), bits.size());
        if (!section) {
            reply.code = susie::kOutOfMemory;
            return reply;
        }
        Copy(info, section->section.bytes);
        Copy(profile, section->section.bytes.subspan(info.size()));
        Copy(bits, section->Bits());
    }
    reply.infoSize = info.size();
    reply.profileSize = profile.size();
    reply.bitsAt = section->bitsAt;
    reply.bytes = section->section.wire;
    return reply;
}

std::optional<HostService::PictureSection> HostService::TakeForPicture(size_t infoSize,
                                                                       size_t bitsSize) {
    const uint64_t bitsAt =
        (uint64_t{infoSize} + kBitsAlignment - 1) / kBitsAlignment * kBitsAlignment;
    if (bitsAt + bitsSize > SIZE_MAX) return std::nullopt;
    auto section = stock_.Take(static_cast<size_t>(bitsAt + bitsSize));
    if (!section) return std::nullopt;
    return PictureSection{*section, static_cast<size_t>(bitsAt)};
}

HostReply HostService::List(LocalConnection& plugin, const PluginSource& source) {
    ListedArchive listed = plugin.List(source);
    HostReply reply = ReplyWith(listed);
    reply.members = std::move(listed.members);
    return reply;
}

HostReply HostService::Extract(LocalConnection& plugin, const PluginSource& source,
                               const HostRequest& request) {
    ExtractedMember extracted =
        plugin.Extract(source, request.member, request.folder, ProgressOf(request));
    HostReply reply = ReplyWith(extracted);
    reply.wasStopped = extracted.wasStopped;
    const OwnedBlock block = extracted.bytes.ReleaseBlock();
    const BlockLock lock(block.Get());
    if (!lock || lock.Size() == 0) return reply;
    const auto section = stock_.Take(lock.Size());
    if (!section) {
        reply.code = susie::kOutOfMemory;
        return reply;
    }
    Copy(lock.Bytes(), section->bytes);
    reply.bytes = section->wire;
    return reply;
}

HostReply HostService::TurnJpeg(const HostRequest& request) {
    HostReply reply;
    const std::optional<Section> bytes = BytesOfSource(request);
    if (!bytes) return reply;
    const jpeg::TurnedJpeg turned = Trapped(jpeg::TurnedJpeg{jpeg::TurnResult::kNoMemory}, [&] {
        return jpeg::Turn(bytes->Bytes(), request.turn);
    });
    reply.turned = turned.result;
    reply.trimmedLeft = turned.left;
    reply.trimmedTop = turned.top;
    if (turned.file.empty()) return reply;
    const auto section = stock_.Take(turned.file.size());
    if (!section) {
        reply.turned = jpeg::TurnResult::kNoMemory;
        return reply;
    }
    Copy(turned.file, section->bytes);
    reply.bytes = section->wire;
    return reply;
}

HostReply HostService::ReadMetadata(const HostRequest& request) {
    HostReply reply;
    const auto tell = [&](dib::ByteSource& source) {
        metadata::FileMetadata read = metadata::ReadFileMetadata(source);
        reply.fields = std::move(read.fields);
        if (request.saved.width != 0) reply.exif = metadata::SavedExif(read.exif, request.saved);
    };
    if (request.file.empty()) {
        const std::optional<Section> bytes = BytesOfSource(request);
        dib::MemorySource source(bytes ? bytes->Bytes() : std::span<uint8_t>());
        tell(source);
    } else if (auto source = files::FileSource::Open(request.file)) {
        tell(*source);
    }
    return reply;
}

SusieProgress HostService::ProgressOf(const HostRequest& request) {
    if (!request.tellsProgress) return {};
    return [this](int done, int total) { return TellProgress(done, total); };
}

bool HostService::TellProgress(int done, int total) {
    const ULONGLONG now = GetTickCount64();
    if (lastProgress_ != 0 && now - lastProgress_ < kProgressPause && done < total) return goesOn_;
    lastProgress_ = now;
    channel_.PutProgress(done, total);
    SetEvent(answer_);
    goesOn_ = WaitForRequest() && channel_.GoesOn();
    return goesOn_;
}

void HostService::Answer(HostReply reply) {
    reply.failures = notes_.TakeFailures();
    reply.isWorn = HasPluginCrashed() || PluginsAreStopped();
    const std::vector<uint8_t> message = BytesOf(reply);
    if (!channel_.Put(ChannelSignal::kReply, message)) {
        spilled_ = Section::Make(message.size());
        if (!spilled_) return;  // without an answer the host is ended
        Copy(message, spilled_->Bytes());
        channel_.PutElsewhere(ChannelSignal::kReply,
                              {reinterpret_cast<uintptr_t>(spilled_->Handle()), message.size(), 0});
    }
    SetEvent(answer_);
}

}  // namespace tessary
