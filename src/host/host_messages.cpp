#include "host/host_messages.h"

#include <algorithm>

#include "host/host_notes.h"
#include "host/wire.h"

// The fields of each message, in their order on the wire. Numbers are written as wide as they are
// in the widest program: hosts and programs may be of 32 or 64 bits.
namespace tessary {
namespace susie {

template <class Wire>
void Transfer(Wire& wire, FileInfo& member) {
    auto position = static_cast<uint64_t>(member.position);
    auto compressedSize = static_cast<uint64_t>(member.compressedSize);
    auto fileSize = static_cast<uint64_t>(member.fileSize);
    auto timestamp = static_cast<int64_t>(member.timestamp);
    wire(member.method, position, compressedSize, fileSize, timestamp, member.path,
         member.fileName);
    uint32_t crc = member.crc;
    wire(crc);
    member.position = static_cast<decltype(member.position)>(position);
    member.compressedSize = static_cast<decltype(member.compressedSize)>(compressedSize);
    member.fileSize = static_cast<decltype(member.fileSize)>(fileSize);
    member.timestamp = static_cast<decltype(member.timestamp)>(timestamp);
    member.crc = crc;
}

}  // namespace susie

namespace jpeg {

template <class Wire>
void Transfer(Wire& wire, TurnWish& wish) {
    wire(wish.orientation, wish.width, wish.height, wish.followsFile, wish.trims);
}

}  // namespace jpeg
namespace metadata {

template <class Wire>
void Transfer(Wire& wire, SavedPicture& picture) {
    wire(picture.width, picture.height, picture.keepsPosition, picture.isSrgb);
}

template <class Wire>
void Transfer(Wire& wire, Field& field) {
    wire(field.kind, field.text);
}

}  // namespace metadata

template <class Wire>
void Transfer(Wire& wire, WireSection& section) {
    wire(section.handle, section.size, section.id);
}

template <class Wire>
void Transfer(Wire& wire, HostRequest& request) {
    wire(request.operation, request.plugin, request.sourceName, request.isFile, request.bytes,
         request.isPreview, request.inOwnColors, request.enough, request.tellsProgress,
         request.tellsCondition, request.tellsFrames, request.frame, request.member, request.folder,
         request.parent, request.turn, request.file, request.saved, request.returned);
}

template <class Wire>
void Transfer(Wire& wire, HostReply& reply) {
    wire(reply.code, reply.condition, reply.conditionText, reply.faultMessage, reply.faultFunction,
         reply.failures, reply.isWorn, reply.style, reply.loadError, reply.isLoaded, reply.isInUse,
         reply.hasSettings, reply.productName, reply.patterns, reply.width, reply.height,
         reply.colorDepth, reply.wasStopped, reply.members, reply.turned, reply.trimmedLeft,
         reply.trimmedTop, reply.bytes, reply.infoSize, reply.profileSize, reply.bitsAt,
         reply.frameKind, reply.frameCount, reply.frameRounds, reply.duration, reply.fields,
         reply.exif);
}

namespace {

constexpr size_t kMaxFailures = 16;  // an operation makes fewer calls

bool CanBe(const metadata::Field& field) {
    return field.kind <= metadata::FieldKind::kLast && field.text.size() <= metadata::kLongestText;
}

template <typename Message>
std::vector<uint8_t> Written(const Message& message) {
    WireWriter writer;
    writer(message);
    return writer.Bytes();
}

template <typename Message>
std::optional<Message> Read(std::span<const uint8_t> bytes) {
    WireReader reader(bytes);
    std::optional<Message> message(std::in_place);
    reader(*message);
    if (!reader.IsWhole()) message.reset();
    return message;
}

}  // namespace

std::vector<uint8_t> BytesOf(const HostRequest& request) {
    return Written(request);
}

std::vector<uint8_t> BytesOf(const HostReply& reply) {
    return Written(reply);
}

std::optional<HostRequest> RequestOf(std::span<const uint8_t> bytes) {
    std::optional<HostRequest> request = Read<HostRequest>(bytes);
    return request && request->operation <= HostOperation::kLast ? request : std::nullopt;
}

std::optional<HostReply> ReplyOf(std::span<const uint8_t> bytes) {
    std::optional<HostReply> reply = Read<HostReply>(bytes);
    if (!reply || reply->turned > jpeg::TurnResult::kLast ||
        reply->patterns.size() > kMaxPatterns || reply->failures.size() > kMaxFailures ||
        !std::ranges::all_of(reply->failures, IsNotedFunction) ||
        reply->fields.size() > metadata::kMostFields ||
        !std::ranges::all_of(reply->fields, CanBe) ||
        reply->exif.size() > metadata::kMostSavedExif) {
        return std::nullopt;
    }
    return reply;
}

}  // namespace tessary
