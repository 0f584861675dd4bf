#include "plugin/local_connection.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "app/base/paths.h"
#include "helpers/dib/check_dib.h"
#include "helpers/dib/embedded_profile.h"
#include "plugin/call_log.h"
#include "plugin/host_state.h"
#include "plugin/plugin_info.h"
#include "plugin/source_block.h"
#include "plugin/susie_library.h"

namespace tessary {
namespace {

// Some plug-ins describe a file only with this flag.
constexpr uint32_t kDescribeFlag = 0x80;

SusieSource SourceOf(const PluginSource& source) {
    if (source.isFile) return {source.name.c_str(), 0, susie::kSourceFile};
    return {reinterpret_cast<const char*>(source.bytes.data()),
            static_cast<LONG_PTR>(source.bytes.size()), susie::kSourceMemory};
}

// A picture in memory of somebody else's.
class RoomMemory final : public PictureMemory {
  public:
    explicit RoomMemory(const RoomForPicture& room) : room_(room) {}

    std::span<const uint8_t> Info() const override { return room_.info; }
    std::span<const uint8_t> Bits() const override { return room_.bits; }

  private:
    RoomForPicture room_;
};

HLOCAL BlockOf(std::span<const uint8_t> bytes) {
    return FilledBlock(bytes.size(),
                       [&](std::span<uint8_t> target) {
                           std::memcpy(target.data(), bytes.data(), bytes.size());
                       })
        .Release();
}

// What is not plain is put right as plug-ins' own blocks are: in its place where that takes another
// header and nothing else, as with one that brings a profile along.
Picture PictureIn(const RoomForPicture& room) {
    Picture picture(std::make_unique<RoomMemory>(room));
    if (picture) return picture;
    const dib::CheckedDib checked = dib::CheckDib(room.info, room.bits);
    const auto info = checked.Info();
    if (checked.Error() != dib::DibError::kNone || !checked.KeepsBits() ||
        info.size() > room.info.size()) {
        return Picture::FromPair({BlockOf(room.info), BlockOf(room.bits)});
    }
    const auto profile = dib::EmbeddedProfile(room.info);
    const std::vector<uint8_t> icc(profile.begin(), profile.end());
    std::ranges::copy(info, room.info.begin());
    picture = Picture(
        std::make_unique<RoomMemory>(RoomForPicture{room.info.first(info.size()), room.bits}));
    picture.SetProfile(icc);
    return picture;
}

}  // namespace

std::unique_ptr<PluginConnection> ConnectTo(const std::wstring& plugin) {
    const PluginConnector& connector = Caller().connector;
    return connector ? connector(plugin) : std::make_unique<LocalConnection>(plugin);
}

void SetPluginConnector(PluginConnector connector) {
    Caller().connector = std::move(connector);
}

bool CanCallPlugins() {
    return FindSusieLibrary() != nullptr;
}

LocalConnection::~LocalConnection() {
    Unload();
}

PluginAnswer LocalConnection::Answer(int32_t code) {
    return {code, {}, calls_.TakeFault()};
}

// Of a call that the plug-in is asked about.
PluginAnswer LocalConnection::AnswerTold(int32_t code) {
    return {code, calls_.Condition(), calls_.TakeFault()};
}

LoadedPlugin LocalConnection::Load() {
    if (module_ == nullptr) {
        module_ = calls_.Load();
        style_ = module_ == nullptr ? kStyleNone : calls_.BindAddresses(module_);
    }
    const int32_t code = module_ == nullptr ? kResultUnexpected : susie::kSuccess;
    return {Answer(code), style_, module_ == nullptr ? calls_.LoadError() : ERROR_SUCCESS};
}

PluginAnswer LocalConnection::Unload() {
    if (module_ != nullptr) {
        frames_.Close();
        calls_.Free(std::exchange(module_, nullptr));
        if (GetModuleHandleW(ExtendedPath(path_).c_str()) == nullptr) calls_.ClearAddresses();
    }
    return Answer(susie::kSuccess);
}

void LocalConnection::LeaveLoaded() {
    frames_.Close();
    module_ = nullptr;
}

PluginDescription LocalConnection::Describe() {
    PluginDescription description;
    description.style = style_;
    description.hasSettings = calls_.Address(SusieFunction::kConfigurationDlg) != nullptr;
    {
        const InfoCalls logged(path_);
        description.patterns = ReadFilePatterns(calls_);
        description.productName = ReadProductName(calls_);
    }
    static_cast<PluginAnswer&>(description) = Answer(susie::kSuccess);
    return description;
}

PluginAnswer LocalConnection::Supports(const PluginSource& source) {
    if (source.isFile) return Answer(calls_.IsSupported(source.name, nullptr));
    // Of a long block the plug-in gets the block itself, and may look as far as it likes.
    if (source.bytes.size() >= std::tuple_size_v<HeaderBlock>) {
        return Answer(calls_.IsSupported(source.name, source.bytes.data()));
    }
    const HeaderBlock header = HeaderOf(source.bytes);
    return Answer(calls_.IsSupported(source.name, header.data()));
}

MeasuredPicture LocalConnection::Measure(const PluginSource& source) {
    SusieSource asked = SourceOf(source);
    susie::PictureInfo info{};
    int32_t code = calls_.GetPictureInfo(asked, info);
    if (code != susie::kSuccess && code != kResultCrashed && source.isFile) {
        asked.flag |= kDescribeFlag;
        code = calls_.GetPictureInfo(asked, info);
    }
    const bool isKnown =
        code == susie::kSuccess && info.width > 0 && info.height > 0 && info.colorDepth > 0;
    return {Answer(code),
            isKnown ? PictureSize{info.width, info.height, info.colorDepth} : PictureSize{}};
}

DecodedPicture LocalConnection::Decode(const PluginSource& source, DecodeWish wish,
                                       const SusieProgress& progress) {
    const ProgressRelay relay(progress);
    PicturePair pair;
    // GetPreview of most plug-ins does nothing or worse: the full picture it is.
    const int32_t code = wish.kind == DecodeKind::kPreview
                             ? calls_.GetPreview(calls_.Address(SusieFunction::kGetPicture),
                                                 SourceOf(source), pair, relay)
                             : calls_.GetPicture(SourceOf(source), pair, relay);
    return WithFrames({AnswerTold(code), Picture::FromPair(pair), relay.Stopped()}, source, wish);
}

// What goes wrong there costs nothing but the frames.
DecodedPicture LocalConnection::WithFrames(DecodedPicture decoded, const PluginSource& source,
                                           DecodeWish wish) {
    frames_.CloseUnless(source);
    if (!decoded.picture || decoded.HasCrashed() || wish.kind == DecodeKind::kPreview ||
        wish.enough > 0) {
        return decoded;
    }
    decoded.frames = frames_.Tell(source);
    calls_.TakeFault();
    return decoded;
}

DecodedPicture LocalConnection::Decode(const PluginSource& source, DecodeWish wish,
                                       const SusieProgress& progress, const RoomMaker& rooms) {
    if (wish.kind == DecodeKind::kPreview ||
        calls_.Address(SusieFunction::kGetPictureInto) == nullptr) {
        return Decode(source, wish, progress);
    }
    const ProgressRelay relay(progress);
    std::optional<RoomForPicture> filled;
    const uint32_t wishes =
        wish.kind == DecodeKind::kFullInOwnColors ? uint32_t{susie::kWishesOwnColors} : 0;
    const int32_t code =
        calls_.GetPictureInto(SourceOf(source), rooms, wishes, wish.enough, filled, relay);
    return WithFrames({AnswerTold(code), filled ? PictureIn(*filled) : Picture(), relay.Stopped()},
                      source, wish);
}

DecodedFrame LocalConnection::DecodeFrame(const PluginSource& source, uint32_t index,
                                          const SusieProgress& progress) {
    std::vector<uint8_t> info;
    std::vector<uint8_t> bits;
    const auto rooms = [&](size_t infoSize, size_t bitsSize) -> std::optional<RoomForPicture> {
        info.assign(infoSize, 0);
        bits.assign(bitsSize, 0);
        return RoomForPicture{info, bits, true};
    };
    DecodedFrame decoded = DecodeFrame(source, index, progress, rooms);
    if (decoded.picture) decoded.picture = Picture::FromPair({BlockOf(info), BlockOf(bits)});
    return decoded;
}

DecodedFrame LocalConnection::DecodeFrame(const PluginSource& source, uint32_t index,
                                          const SusieProgress& progress, const RoomMaker& rooms) {
    const ProgressRelay relay(progress);
    std::optional<RoomForPicture> filled;
    uint32_t duration = 0;
    const int32_t code = frames_.Get(source, index, rooms, filled, duration, relay);
    return {{AnswerTold(code), filled ? PictureIn(*filled) : Picture(), relay.Stopped(), {}},
            duration};
}

ListedArchive LocalConnection::List(const PluginSource& archive) {
    HLOCAL handle = nullptr;
    ListedArchive listed{AnswerTold(calls_.GetArchiveInfo(SourceOf(archive), handle)), {}};
    const bool succeeded = listed.HasSucceeded();
    ArchiveMembers members = ReadArchiveMembers(handle);
    const bool mayBeList =
        succeeded ? IsLocalHandleValid(handle) : listed.condition.kind == susie::kConditionNone;
    const bool isList = mayBeList && (succeeded || LooksLikeList(members));
    // After a failure only what is a list for certain was not freed by the plug-in itself.
    if (succeeded || isList) {
        const OwnedBlock freed(handle);
    } else {
        FreeLeftHandle(handle);
    }
    if (isList) listed.members = std::move(members);
    return listed;
}

ExtractedMember LocalConnection::Extract(const PluginSource& archive, const susie::FileInfo& member,
                                         const std::optional<std::string>& folder,
                                         const SusieProgress& progress) {
    const ProgressRelay relay(progress);
    const auto position = static_cast<LONG_PTR>(member.position);
    HLOCAL handle = nullptr;
    const int32_t code =
        folder ? (archive.isFile ? calls_.GetFileSS(archive.name, position, *folder, relay)
                                 : calls_.GetFileMS(archive.bytes.data(), position, *folder, relay))
               : (archive.isFile ? calls_.GetFileSM(archive.name, position, handle, relay)
                                 : calls_.GetFileMM(archive.bytes.data(), position, handle, relay));
    return {AnswerTold(code), MemberBytes(OwnedBlock(handle)), relay.Stopped()};
}

PluginAnswer LocalConnection::Configure(HWND parent) {
    return Answer(calls_.ConfigurationDlg(parent));
}

}  // namespace tessary
