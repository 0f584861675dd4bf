// What a program and the host process of its plug-ins tell each other: one request and one reply
// for each operation of a PluginConnection.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "helpers/jpeg_turn/jpeg_turn.h"
#include "helpers/metadata/metadata_field.h"
#include "helpers/metadata/saved_exif.h"
#include "helpers/susiectl/susie_interface.h"
#include "plugin/file_patterns.h"

namespace tessary {

enum class HostOperation : uint32_t {
    kBegin,  // the first: answered as soon as the host is there
    kEnd,    // the last: plug-ins are freed, and the host ends
    kLoad,
    kUnload,
    kLeaveLoaded,
    kIsInUse,
    kDescribe,
    kSupports,
    kMeasure,
    kDecode,
    kList,
    kExtract,
    kConfigure,
    kFrame,
    kTurnJpeg,  // of no plug-in's
    kMetadata,  // the same: what a picture file says of its picture
    kLast = kMetadata,
};

// Bytes in a section of shared memory.
struct WireSection {
    uint64_t handle = 0;  // of the host process; 0: there are none
    uint64_t size = 0;
    // Of a section that comes again, the host's with other bytes, the program's with the same; 0:
    // it does not.
    uint32_t id = 0;
};

// The fields that an operation has no use for stay as they are here.
struct HostRequest {
    HostOperation operation = HostOperation::kBegin;
    std::wstring plugin{};     // full path of its file
    std::string sourceName{};  // PluginSource, with its bytes
    bool isFile = true;
    WireSection bytes{};
    bool isPreview = false;
    bool inOwnColors = false;    // DecodeKind::kFullInOwnColors
    uint32_t enough = 0;         // DecodeWish
    bool tellsProgress = false;  // somebody wants to know
    bool tellsCondition = true;  // the plug-in may be asked for it
    bool tellsFrames = true;     // and for frames
    uint32_t frame = 0;
    susie::FileInfo member{};
    std::optional<std::string> folder{};
    uint64_t parent = 0;  // window
    jpeg::TurnWish turn{};
    std::wstring file{};               // kMetadata: full path; empty: the bytes
    metadata::SavedPicture saved{};    // the same: of a width, so that EXIF data are wanted for it
    std::vector<uint32_t> returned{};  // the ids of sections that nobody reads any more
};

struct HostReply {
    int32_t code = 0;
    int32_t condition = 0;
    std::wstring conditionText{};
    std::wstring faultMessage{};
    std::wstring faultFunction{};
    // The functions that have crashed and were caught, by the keys of the error log.
    std::vector<std::wstring> failures{};
    // The host's memory is not to be relied on any more: it wants to be replaced.
    bool isWorn = false;
    int32_t style = 0;
    uint32_t loadError = 0;
    bool isLoaded = false;
    bool isInUse = false;
    bool hasSettings = false;
    std::wstring productName{};
    FilePatterns patterns{};
    int32_t width = -1;
    int32_t height = -1;
    int32_t colorDepth = -1;
    bool wasStopped = false;
    std::optional<std::vector<susie::FileInfo>> members{};
    // Of a turned file, which lies in `bytes`.
    jpeg::TurnResult turned = jpeg::TurnResult::kDamaged;
    uint32_t trimmedLeft = 0;
    uint32_t trimmedTop = 0;
    // A member's bytes; or a picture's info block, its profile, and its bits block behind them.
    WireSection bytes{};
    uint64_t infoSize = 0;
    uint64_t profileSize = 0;
    uint64_t bitsAt = 0;
    int32_t frameKind = 0;  // PictureFrames
    uint32_t frameCount = 0;
    uint32_t frameRounds = 0;
    uint32_t duration = 0;  // of the frame
    metadata::Fields fields{};
    std::vector<uint8_t> exif{};  // for the file that the picture is saved in
};

std::vector<uint8_t> BytesOf(const HostRequest& request);
std::vector<uint8_t> BytesOf(const HostReply& reply);

// Nothing when the bytes are no such message.
std::optional<HostRequest> RequestOf(std::span<const uint8_t> bytes);
std::optional<HostReply> ReplyOf(std::span<const uint8_t> bytes);

}  // namespace tessary
