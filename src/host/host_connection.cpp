#include "host/host_connection.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "helpers/color/color_profile.h"
#include "helpers/susiectl/susiectl.h"
#include "host/request_names.h"
#include "plugin/call_scope.h"
#include "plugin/no_host.h"
#include "plugin/plugin_state.h"

namespace tessary {
namespace {

bool IsOf(const PluginEnd& end, const std::wstring& plugin) {
    return EqualsIgnoreCase(end.call.plugin, plugin);
}

// What comes between two calls does not come of this one, though the plug-in be the same.
bool IsThisCallsFault(const PluginEnd& end, const std::wstring& plugin) {
    return IsOf(end, plugin) && end.call.function != kWindowCall;
}

bool AsksForFrames(std::wstring_view function) {
    return function == L"OpenFrames" || function == L"CloseFrames";
}

// Whether another host may do better. Of an end whose kind is certain there is no doubt; a host
// that has just gone may have been ended by somebody else, and one that was calling nobody when it
// fell silent, too. Or another plug-in was to blame.
bool IsWorthAnother(const HostRequest& request, HostEnd end,
                    const std::optional<PluginEnd>& blame) {
    const HostOperation operation = request.operation;
    const bool canBeRepeated =
        operation == HostOperation::kLoad ||
        (operation > HostOperation::kIsInUse && operation != HostOperation::kConfigure);
    const bool hasEnded = end == HostEnd::kDied || end == HostEnd::kSilent;
    const bool isProved = blame && blame->kind != EndKind::kExit && IsOf(*blame, request.plugin);
    return canBeRepeated && hasEnded && !isProved;
}

// `isServed`: the host has the plug-in loaded. In a new one that is done first, and takes its time.
DWORD LimitOf(HostOperation operation, bool isServed, const HostLimits& limits) {
    switch (operation) {
        case HostOperation::kConfigure:
            return INFINITE;  // the user's time
        case HostOperation::kDescribe:
        case HostOperation::kSupports:
            return isServed ? limits.asking : limits.working;
        default:
            return limits.working;
    }
}

// A picture in a section of a host's, in which only the pixels lie that are looked at: the host
// may change colours, and nothing else.
class SectionPicture final : public PictureMemory {
  public:
    SectionPicture(std::vector<uint8_t> info, HostSections::Lease section,
                   std::span<const uint8_t> bits)
        : info_(std::move(info)), section_(std::move(section)), bits_(bits) {}

    std::span<const uint8_t> Info() const override { return info_; }
    std::span<const uint8_t> Bits() const override { return bits_; }

  private:
    std::vector<uint8_t> info_;
    HostSections::Lease section_;
    std::span<const uint8_t> bits_;
};

// Empty when it is none.
Picture PictureOf(const HostReply& reply, std::optional<HostSections::Lease> section) {
    if (!section) return {};
    const std::span<const uint8_t> all = section->Bytes();
    if (reply.infoSize > reply.bitsAt || reply.bitsAt > all.size() ||
        reply.profileSize > reply.bitsAt - reply.infoSize ||
        reply.profileSize > color::kLargestProfile) {
        return {};
    }
    const auto info = all.first(static_cast<size_t>(reply.infoSize));
    const auto bits = all.subspan(static_cast<size_t>(reply.bitsAt));
    const auto profile = all.subspan(info.size(), static_cast<size_t>(reply.profileSize));
    const std::vector<uint8_t> icc(profile.begin(), profile.end());
    Picture picture(std::make_unique<SectionPicture>(std::vector<uint8_t>(info.begin(), info.end()),
                                                     *std::move(section), bits));
    picture.SetProfile(icc);
    return picture;
}

OwnedBlock BlockOf(const std::optional<HostSections::Lease>& section) {
    if (!section) return {};
    const std::span<const uint8_t> bytes = section->Bytes();
    return FilledBlock(bytes.size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes.data(), bytes.size());
    });
}

// Of all hosts, whichever thread asks them.
struct ChosenLimits {
    std::atomic<DWORD> asking = HostLimits{}.asking;
    std::atomic<DWORD> working = HostLimits{}.working;
};

ChosenLimits& Chosen() {
    static ChosenLimits limits;
    return limits;
}

HostLimits LimitsNow() {
    return {.asking = Chosen().asking, .working = Chosen().working};
}

}  // namespace

void SetHostLimits(const GeneralSettings& general) {
    Chosen().asking = static_cast<DWORD>(general.askingSeconds) * 1000;
    Chosen().working = static_cast<DWORD>(general.workingSeconds) * 1000;
}

void UseHostProcess(HostWait wait) {
    static HostPool pool(HostProgram(), {}, std::move(wait));
    pool.FollowLimits(LimitsNow);
    SetPluginConnector(
        [](const std::wstring& plugin) { return std::make_unique<HostConnection>(plugin, pool); });
}

void UseFurtherHosts(HostWindows windows) {
    Host().furtherConnector = [windows] { return OwnHostConnector(windows); };
}

std::wstring HostProgram() {
    return AppFolder() + kHostProgram;
}

PluginConnector OwnHostConnector(HostWindows windows, const std::wstring& program) {
    const Blame nobody = [](const PluginEnd&) {};
    const auto pool = std::make_shared<HostPool>(program, HostLimits{}, HostWait{}, nobody);
    pool->FollowLimits(LimitsNow);
    if (windows == HostWindows::kHidden) pool->Hide();
    return [pool](const std::wstring& plugin) {
        return std::make_unique<HostConnection>(plugin, *pool);
    };
}

HostConnection::~HostConnection() {
    Trapped([&] { Unload(); });
}

// As a log has it. What is asked about stands for the file before one is bound.
PluginCall HostConnection::CallOf(const HostRequest& request) const {
    const bool isBound = !boundFile_.empty();
    return {LogNameOf(request), path_, isBound ? boundFile_ : FromAnsi(request.sourceName)};
}

bool HostConnection::IsGivenUp() const {
    const uint32_t run = Caller().longRun;
    if (run == 0) return pool_.IsGivenUp(path_);
    if (std::exchange(judgedIn_, run) != run) wasGivenUp_ = pool_.IsGivenUp(path_);
    return wasGivenUp_;
}

HostEnd HostConnection::TryToAsk(HostRequest request, const PluginSource& source,
                                 const SusieProgress& progress, Told& told) const {
    if (IsGivenUp()) return HostEnd::kGivenUp;
    HostProcess* const host = pool_.For(path_);
    if (host == nullptr) return HostEnd::kNoHost;
    if (!source.isFile && !source.bytes.empty()) {
        const std::optional<LentBytes::Lent> lent = pool_.Lent().Of(source.bytes);
        if (!lent) throw std::bad_alloc();
        request.bytes = host->Lend(*lent);
        if (request.bytes.handle == 0 && host->IsAlive()) throw std::bad_alloc();
    } else if (!source.name.empty()) {
        pool_.Lent().Forget();
    }
    const auto ended = [&](HostEnd end) {
        told.blame = host->TakeBlame(end, CallOf(request));
        return end;
    };
    told.reply = {};
    const DWORD limit = LimitOf(request.operation, served_ == host->Id(), pool_.Limits());
    const bool isUsers = request.operation == HostOperation::kConfigure;
    const CallWatcher& watcher = isUsers ? CallWatcher() : Caller().watcher;
    const HostEnd end = host->Call(request, limit, progress, watcher, told.reply);
    if (request.bytes.handle != 0 && request.bytes.id == 0) pool_.Lent().Forget();
    if (end != HostEnd::kAnswered) return ended(end);
    served_ = host->Id();
    if (told.reply.bytes.handle == 0) return end;
    switch (host->Take(told.reply.bytes, told.bytes)) {
        case HostSections::Opened::kOpen:
            return end;
        case HostSections::Opened::kNoMemory:
            told.reply.code = susie::kOutOfMemory;
            return end;
        case HostSections::Opened::kNoSection:
            break;
    }
    if (!host->IsAlive()) return ended(HostEnd::kDied);
    host->End();
    return ended(HostEnd::kLied);
}

HostConnection::Told HostConnection::Ask(HostRequest request, const PluginSource& source,
                                         const SusieProgress& progress) const {
    // The host has one thing to do at a time; the answer to this one would be taken for the
    // other's.
    if (PluginCallUnderWay()) return {};
    const CallScope scope;
    request.plugin = path_;
    request.sourceName = source.name;
    request.isFile = source.isFile;
    request.tellsProgress = static_cast<bool>(progress);
    request.tellsCondition = tellsCondition_;
    request.tellsFrames = tellsFrames_;
    Told told;
    told.end = TryToAsk(request, source, progress, told);
    // The picture itself need not be lost with its frames.
    if (request.operation == HostOperation::kDecode && told.blame && IsOf(*told.blame, path_) &&
        AsksForFrames(told.blame->call.function)) {
        pool_.Tell(*std::exchange(told.blame, std::nullopt));
        request.tellsFrames = tellsFrames_ = false;
        told.end = TryToAsk(request, source, progress, told);
    }
    if (IsWorthAnother(request, told.end, told.blame)) {
        if (told.blame && !IsThisCallsFault(*told.blame, path_)) pool_.Tell(*told.blame);
        told.blame.reset();
        told.end = TryToAsk(request, source, progress, told);
        // Two hosts that were calling nobody have not ended by chance.
        if (!told.blame && IsWorthAnother(request, told.end, {})) {
            const EndKind kind = told.end == HostEnd::kSilent ? EndKind::kSilence : EndKind::kExit;
            told.blame = {CallOf(request), kind};
        }
    }
    if (told.blame) pool_.Tell(*told.blame);
    if (told.end != HostEnd::kAnswered) {
        told.answer = EndedAnswer(told.end, request.operation, pool_.WhyNone());
        told.reply = {};
        told.reply.wasStopped = told.end == HostEnd::kStopped;
        return told;
    }
    HostReply& reply = told.reply;
    for (const std::wstring& function : reply.failures) {
        pool_.Tell({{function, path_, CallOf(request).file}, EndKind::kCaught});
        // A new host does not know what it has crashed in.
        tellsCondition_ = tellsCondition_ && function != L"GetLastCondition";
        tellsFrames_ = tellsFrames_ && !AsksForFrames(function);
    }
    told.answer = {reply.code,
                   ConditionOf(reply.condition, reply.conditionText),
                   {std::move(reply.faultMessage), std::move(reply.faultFunction)}};
    return told;
}

LoadedPlugin HostConnection::Load() {
    const Told told = Ask({.operation = HostOperation::kLoad});
    isLoaded_ = told.reply.isLoaded;
    const bool hasEnded = told.end != HostEnd::kAnswered;
    const uint32_t loadError = told.answer.HasCrashed()       ? susiectl::kErrorCrashed
                               : told.end == HostEnd::kNoHost ? pool_.WhyNone()
                                                              : told.reply.loadError;
    return {told.answer, hasEnded ? kStyleNone : told.reply.style, loadError};
}

bool HostConnection::IsInMemory() const {
    const HostProcess* const host = isLoaded_ ? pool_.RunningFor(path_) : nullptr;
    return host != nullptr && host->Id() == served_;
}

PluginAnswer HostConnection::Unload() {
    if (!std::exchange(isLoaded_, false)) return {susie::kSuccess, {}, {}};
    if (pool_.RunningFor(path_) == nullptr) return {susie::kSuccess, {}, {}};
    return Ask({.operation = HostOperation::kUnload}).answer;
}

void HostConnection::LeaveLoaded() {
    if (std::exchange(isLoaded_, false) && pool_.RunningFor(path_) != nullptr) {
        Ask({.operation = HostOperation::kLeaveLoaded});
    }
}

bool HostConnection::IsInUse() const {
    return isLoaded_ && pool_.RunningFor(path_) != nullptr &&
           Ask({.operation = HostOperation::kIsInUse}).reply.isInUse;
}

PluginDescription HostConnection::Describe() {
    Told told = Ask({.operation = HostOperation::kDescribe});
    PluginDescription description;
    static_cast<PluginAnswer&>(description) = std::move(told.answer);
    description.style = told.reply.style;
    description.hasSettings = told.reply.hasSettings;
    description.productName = std::move(told.reply.productName);
    description.patterns = std::move(told.reply.patterns);
    if (description.patterns.empty()) description.patterns = {kEveryFile};
    return description;
}

PluginAnswer HostConnection::Supports(const PluginSource& source) {
    Told told = Ask({.operation = HostOperation::kSupports}, source);
    // Its number for what was stopped means yes here.
    if (told.end == HostEnd::kStopped) told.answer.code = susie::kSuccess;
    return std::move(told.answer);
}

MeasuredPicture HostConnection::Measure(const PluginSource& source) {
    const Told told = Ask({.operation = HostOperation::kMeasure}, source);
    const HostReply& reply = told.reply;
    const bool isKnown = reply.width > 0 && reply.height > 0 && reply.colorDepth > 0;
    return {told.answer,
            isKnown ? PictureSize{reply.width, reply.height, reply.colorDepth} : PictureSize{}};
}

DecodedPicture HostConnection::Decode(const PluginSource& source, DecodeWish wish,
                                      const SusieProgress& progress) {
    Told told = Ask({.operation = HostOperation::kDecode,
                     .isPreview = wish.kind == DecodeKind::kPreview,
                     .inOwnColors = wish.kind == DecodeKind::kFullInOwnColors,
                     .enough = wish.enough},
                    source, progress);
    const HostReply& reply = told.reply;
    DecodedPicture decoded{told.answer,
                           {},
                           reply.wasStopped,
                           FramesOf(reply.frameKind, reply.frameCount, reply.frameRounds)};
    decoded.picture = PictureOf(reply, std::move(told.bytes));
    return decoded;
}

DecodedFrame HostConnection::DecodeFrame(const PluginSource& source, uint32_t index,
                                         const SusieProgress& progress) {
    Told told = Ask({.operation = HostOperation::kFrame, .frame = index}, source, progress);
    DecodedFrame decoded{{told.answer, {}, told.reply.wasStopped, {}},
                         std::min(told.reply.duration, kLongestFrame)};
    decoded.picture = PictureOf(told.reply, std::move(told.bytes));
    return decoded;
}

ListedArchive HostConnection::List(const PluginSource& archive) {
    Told told = Ask({.operation = HostOperation::kList}, archive);
    return {std::move(told.answer), std::move(told.reply.members)};
}

ExtractedMember HostConnection::Extract(const PluginSource& archive, const susie::FileInfo& member,
                                        const std::optional<std::string>& folder,
                                        const SusieProgress& progress) {
    const Told told =
        Ask({.operation = HostOperation::kExtract, .member = member, .folder = folder}, archive,
            progress);
    ExtractedMember extracted{told.answer, {}, told.reply.wasStopped};
    extracted.bytes = MemberBytes(BlockOf(told.bytes));
    return extracted;
}

PluginAnswer HostConnection::Configure(HWND parent) {
    // The settings window comes to the front, where ours is now.
    AllowSetForegroundWindow(ASFW_ANY);
    return Ask({.operation = HostOperation::kConfigure,
                .parent = reinterpret_cast<uintptr_t>(parent)})
        .answer;
}

}  // namespace tessary
