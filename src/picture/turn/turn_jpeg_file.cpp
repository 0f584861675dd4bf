#include "picture/turn/turn_jpeg_file.h"

#include <new>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "helpers/files/file_name.h"
#include "helpers/files/file_source.h"
#include "helpers/files/old_file.h"
#include "helpers/files/replacing_file.h"
#include "helpers/jpeg_turn/jpeg_outline.h"
#include "host/host_process.h"
#include "host/lent_bytes.h"

namespace tessary {
namespace {

using Outcome = TurnedFile::Outcome;

constexpr DWORD kLimit = 60'000;           // milliseconds without an answer
constexpr uint64_t kLargest = 1ull << 30;  // bytes; JPEG ends at 65,535 pixels a side

// Nothing when it cannot be read.
std::optional<std::vector<uint8_t>> BytesOf(const std::wstring& path) {
    auto source = files::FileSource::Open(path);
    if (!source || source->Size() > kLargest) return std::nullopt;
    std::vector<uint8_t> bytes(static_cast<size_t>(source->Size()));
    const std::optional<size_t> count = source->ReadAt(0, bytes);
    if (count != bytes.size()) return std::nullopt;
    return bytes;
}

// What a process has made of a stranger's file has to be one of the expected size.
bool IsExpected(std::span<const uint8_t> made, std::span<const uint8_t> given,
                const TurnedFile& turned, jpeg::TurnResult result) {
    const auto outline = jpeg::OutlineOf(made);
    const auto former = jpeg::OutlineOf(given);
    if (!outline || !former) return false;
    if (result == jpeg::TurnResult::kMarked) return made.size() == given.size();
    const auto isSize = [&](uint32_t width, uint32_t height) {
        return outline->width + turned.left == width && outline->height + turned.top == height;
    };
    return isSize(former->width, former->height) || isSize(former->height, former->width);
}

class Turning {
  public:
    Turning(const JpegFileToTurn& file, const std::function<bool()>& goesOn)
        : file_(file), goesOn_(goesOn) {}

    Outcome Run(const std::wstring& program, TurnedFile& turned) {
        // Before anything is done for nothing.
        const files::OldFile old(files::NameBehindLinks(files::ExtendedFullName(file_.path)));
        if (old.Exists() && !old.IsReplaceable()) return NotWritten(turned, ERROR_ACCESS_DENIED);
        stamp_ = ExactStampOf(file_.path);
        if (!IsAsShown()) return Outcome::kChanged;
        bytes_ = BytesOf(file_.path);
        if (!bytes_) return Outcome::kNotRead;
        host_ = HostProcess::Start(program, {}, {});
        const std::optional<LentBytes::Lent> lent = lent_.Of(*bytes_);
        if (!host_ || !lent) return Outcome::kFailed;
        HostReply reply;
        const HostEnd end = host_->Call({.operation = HostOperation::kTurnJpeg,
                                         .bytes = host_->Lend(*lent),
                                         .turn = file_.wish},
                                        kLimit, {}, Watcher(), reply);
        if (end == HostEnd::kStopped || !goesOn_()) return Outcome::kStopped;
        if (end != HostEnd::kAnswered) return Outcome::kFailed;
        turned.why = reply.turned;
        turned.left = reply.trimmedLeft;
        turned.top = reply.trimmedTop;
        if (reply.turned > jpeg::TurnResult::kMarked) return Outcome::kRefused;
        return Write(reply, turned);
    }

  private:
    static Outcome NotWritten(TurnedFile& turned, DWORD error) {
        turned.error = error;
        return Outcome::kNotWritten;
    }

    bool IsAsShown() const {
        const std::optional<FileStamp> now = StampOf(file_.path);
        return now && now == file_.stamp && stamp_ && ExactStampOf(file_.path) == stamp_;
    }

    CallWatcher Watcher() const {
        return [this](const WaitedCall& call) {
            if (!goesOn_()) return CallWish::kStops;
            return call.isOverdue ? CallWish::kGivenUp : CallWish::kGoesOn;
        };
    }

    Outcome Write(const HostReply& reply, TurnedFile& turned) const {
        std::optional<HostSections::Lease> section;
        if (host_->Take(reply.bytes, section) != HostSections::Opened::kOpen) {
            return Outcome::kFailed;
        }
        // A copy: the process could change it while it is looked at.
        const std::vector<uint8_t> made(section->Bytes().begin(), section->Bytes().end());
        if (!IsExpected(made, *bytes_, turned, reply.turned)) return Outcome::kFailed;
        files::ReplacingFile target(file_.path, files::Links::kFollow);
        if (!target.IsOpen() || !target.Write(made)) return NotWritten(turned, target.Error());
        if (!IsAsShown()) return Outcome::kChanged;
        if (!goesOn_()) return Outcome::kStopped;
        if (target.Commit(files::Durability::kDisk, goesOn_)) return Outcome::kDone;
        if (target.Error() == ERROR_CANCELLED) return Outcome::kStopped;
        return NotWritten(turned, target.Error());
    }

    const JpegFileToTurn& file_;
    const std::function<bool()>& goesOn_;
    std::optional<FileStamp> stamp_;
    std::optional<std::vector<uint8_t>> bytes_;
    LentBytes lent_;
    std::unique_ptr<HostProcess> host_;
};

}  // namespace

TurnedFile TurnJpegFile(const JpegFileToTurn& file, const std::function<bool()>& goesOn,
                        const std::wstring& program) {
    TurnedFile turned;
    try {
        turned.outcome = Turning(file, goesOn).Run(program, turned);
    } catch (const std::bad_alloc&) {
        turned.outcome = Outcome::kRefused;
        turned.why = jpeg::TurnResult::kNoMemory;
    }
    return turned;
}

}  // namespace tessary
