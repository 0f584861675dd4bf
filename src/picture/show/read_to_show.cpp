#include "picture/show/read_to_show.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "app/base/paths.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/read/read_picture.h"
#include "picture/show/fetched_file.h"
#include "plugin/call_watch.h"
#include "plugin/file_stamp.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// As many as a list of files has.
constexpr uint32_t kMostPages = 32000;

constexpr wchar_t kBrokenBitmapText[] =
    L"ビットマップファイルが壊れているか、対応していない形式です。";
constexpr wchar_t kEmptyFileText[] = L"ファイルが空です。";
constexpr wchar_t kNoArchiveText[] =
    L"圧縮ファイルが変更されたか、読み取れなくなっています。開き直してください。";

std::wstring SubjectOf(const std::wstring& path) {
    return L"ファイル " + path;
}

std::wstring SubjectOf(const std::wstring& archivePath, const std::wstring& memberName) {
    return SubjectOf(archivePath) + L" 内の " + memberName;
}

std::wstring WithPlugin(const std::wstring& reason, const std::wstring& plugin) {
    return reason + L"\r\nプラグイン: " + SusieCollection().NameOf(plugin);
}

std::wstring ReasonOf(const PluginFailure& failure, const std::wstring& plugin) {
    return WithPlugin(failure.why.empty() ? failure.what : failure.what + L"\r\n" + failure.why,
                      plugin);
}

// Why there is no picture; empty when nobody claims the file.
std::wstring ReasonOf(const ReadResult& read) {
    if (read.failure) return ReasonOf(*read.failure, read.plugin);
    if (read.refusal) return WithPlugin(read.refusal->reason, read.refusal->dllName);
    return read.isBrokenBitmap ? kBrokenBitmapText : L"";
}

ReadToShow Failed(std::wstring failure) {
    return {{.failure = std::move(failure)}, {}};
}

// What is left of a read that was asked to stop. It has not failed.
ReadToShow Stopped() {
    return {{.stopped = true}, {}};
}

// What was read, and when: the file as it was then, if it can be known again.
struct Origin {
    AheadEntry entry{};
    std::optional<FileStamp> stamp{};
};

// What there is beside the picture.
void TellFrames(const Origin& origin, const ReadResult& read, ReadToShow& result) {
    const PictureFrames& frames = read.frames;
    if (!origin.stamp) return;
    if (frames.kind == FrameKind::kPages) result.file.pages = std::min(frames.count, kMostPages);
    if (frames.kind != FrameKind::kAnimation) return;
    result.animation = {
        .entry = origin.entry,
        .stamp = *origin.stamp,
        .plugin = read.plugin,
        .size = {result.picture.Width(), result.picture.Height()},
        .count = frames.count,
        .rounds = frames.rounds,
        .plugins = std::make_shared<const KnownPlugins>(KnownOf(SusieCollection()))};
}

// `reason`: why there is no picture, where that is known better.
ReadToShow Told(const Origin& origin, ReadResult read, const std::wstring& subject,
                std::wstring reason = {}) {
    if (read.isStopped) return Stopped();
    if (read.kind == kFileUnknown) {
        if (reason.empty()) reason = ReasonOf(read);
        return Failed(reason.empty() ? reason : FailureText(subject, reason));
    }
    const std::wstring plugin =
        read.plugin.empty() ? std::wstring() : SusieCollection().NameOf(read.plugin);
    ReadToShow result{{.kind = read.kind, .pluginName = plugin, .damage = std::move(read.damage)},
                      std::move(read.picture)};
    TellFrames(origin, read, result);
    return result;
}

ReadToShow Told(AheadPicture ready, const std::wstring& subject) {
    ReadToShow result = Told(Origin{ready.entry, ready.stamp}, std::move(ready.read), subject);
    result.prepared = std::move(ready.prepared);
    return result;
}

// For the way back to what is shown now.
void Keep(const Origin& origin, const ReadResult& read) {
    if (!origin.stamp || !IsPictureKind(read.kind) || read.isStopped) return;
    Ahead().Keep(
        AheadPicture{.entry = origin.entry, .stamp = *origin.stamp, .read = AnotherOf(read)});
}

// Passes on to the view how far a read is, and remembers that the view has asked it to stop: some
// plug-ins do not listen and finish their work, others report a failure.
class ViewWatch {
  public:
    explicit ViewWatch(PictureView& view) : view_(view) {}
    ViewWatch(const ViewWatch&) = delete;
    ViewWatch& operator=(const ViewWatch&) = delete;

    bool GoesOn(int done, int total) {
        view_.TellProgress(done, total);
        return !IsStopped();
    }
    // Hears what was asked for while a plug-in let nothing be heard: it was meant for this read,
    // and for what the view still shows.
    bool IsStopped() {
        if (!view_.Breathe()) stopped_ = true;
        return stopped_;
    }

    ReadWatch Functions() {
        return {[this](int done, int total) { return GoesOn(done, total); },
                [this] { return IsStopped(); }, true};
    }

  private:
    PictureView& view_;
    bool stopped_ = false;
    CallWatch calls_{[this](const WaitedCall& call) {
        const CallWish wish = view_.AwaitsCall(call);
        stopped_ = stopped_ || wish == CallWish::kStops;
        return stopped_ ? CallWish::kStops : wish;
    }};
};

// Says so, for as long as it holds: with what is not shown, and in the status bar.
void TellStoppedPlugins(PictureView& view, ReadToShow& result) {
    if (!PluginsAreStopped()) return;
    const std::wstring text = PluginsStoppedText();
    view.SetPanelText(kNoticePanel, text);
    if (result.file.kind != kFileUnknown || result.file.stopped) return;
    std::wstring& failure = result.file.failure;
    failure = failure.empty() ? FailureText(result.subject, text) : failure + L"\r\n" + text;
}

bool IsEmptyFile(const std::wstring& path) {
    const std::optional<FileStamp> stamp = StampOf(path);
    return stamp && stamp->size == 0;
}

// Plug-ins may define what an empty file is. When none makes a picture of it, that is the reason.
ReadToShow ReadFileAt(const std::wstring& path, uint32_t page, ViewWatch& watch) {
    Origin origin{{.path = path, .page = page}};
    if (auto ready = Ahead().Take(origin.entry)) {
        return Told(*std::move(ready), SubjectOf(path));
    }
    if (watch.IsStopped()) return Stopped();
    origin.stamp = ExactStampOf(path);
    const SourceFile file = LookAtFile(path);
    if (!file.trouble.empty()) return Failed(file.trouble);
    // Nobody is asked twice who has refused it.
    ReadResult read = file.kind == kFileUnknown ? ReadResult{.refusal = file.refusal}
                                                : ReadPage(file, page, watch.Functions());
    if (origin.stamp) TellOrigin(read, {.path = path, .stamp = *origin.stamp});
    Keep(origin, read);
    const bool isEmpty = read.kind == kFileUnknown && IsEmptyFile(path);
    return Told(origin, std::move(read), SubjectOf(path), isEmpty ? kEmptyFileText : L"");
}

ReadToShow FetchAndRead(const std::wstring& path, uint32_t page, PictureView& view,
                        ViewWatch& watch) {
    std::wstring failure;
    switch (FetchToShow(path, view, failure)) {
        case FetchEnd::kPassedBy:
            return {{.passedBy = true}, {}};
        case FetchEnd::kStopped:
            return Stopped();
        case FetchEnd::kFailed:
            return Failed(FailureText(SubjectOf(path), failure));
        case FetchEnd::kIsHere:
            break;
    }
    return ReadFileAt(path, page, watch);
}

// `subject` receives how messages name the member.
ReadToShow ReadMember(const AheadEntry& entry, ViewWatch& watch, std::wstring& subject) {
    const std::wstring& archivePath = entry.path;
    const int32_t position = entry.member;
    if (PluginCallUnderWay()) return {};
    clsSusie* const archive = SusieCollection().ListedArchive(archivePath);
    if (archive == nullptr) return Failed(FailureText(subject, kNoArchiveText));
    std::wstring name;
    uint64_t changed = 0;
    OwnedBlock content;
    std::wstring damage;
    std::optional<AheadPicture> ready;
    const std::optional<FileStamp> stamp = ExactStampOf(archivePath);
    const auto failure = FailureIn(*archive, [&] {
        name = archive->Files(position);
        subject = SubjectOf(archivePath, name);
        ready = Ahead().Take(entry);
        if (ready || watch.IsStopped()) return;
        changed = archive->FileChanged(position);
        content = archive->DecodeArchive(position, watch.Functions().progress);
        damage = archive->Damage();
    });
    if (watch.IsStopped()) return Stopped();
    if (failure) return Failed(FailureText(subject, ReasonOf(*failure, archive->DllName())));
    if (ready) {
        damage = ready->memberDamage;
    } else {
        ready.emplace(AheadPicture{
            .entry = entry,
            .stamp = stamp.value_or(FileStamp{}),
            .read = ReadPicture(content.Get(), FileNameOf(name), watch.Functions(), entry.page),
            .memberDamage = damage});
        if (stamp) {
            TellOrigin(
                ready->read,
                {.path = archivePath, .stamp = *stamp, .member = name, .memberChanged = changed},
                content.Get());
        }
        if (stamp && IsPictureKind(ready->read.kind)) Ahead().Keep(ready->Another());
    }
    ReadToShow result = Told(*std::move(ready), subject);
    // What the member lacks is the cause of what its picture lacks.
    if (IsPictureKind(result.file.kind) && !damage.empty()) result.file.damage = std::move(damage);
    return result;
}

}  // namespace

std::wstring FailureText(const std::wstring& subject, const std::wstring& reason) {
    return subject + L" を表示できません。\r\n" + reason;
}

ReadToShow ReadFileToShow(const std::wstring& path, PictureView& view) {
    return ReadPageToShow(path, 0, view);
}

ReadToShow ReadPageToShow(const std::wstring& path, uint32_t page, PictureView& view) {
    ViewWatch watch(view);
    ReadToShow result = FetchAndRead(path, page, view, watch);
    if (watch.IsStopped()) {
        SusieCollection().UnloadFile();
        result = Stopped();
    }
    result.subject = SubjectOf(path);
    TellStoppedPlugins(view, result);
    return result;
}

ReadToShow ReadMemberToShow(const AheadEntry& member, PictureView& view) {
    ViewWatch watch(view);
    std::wstring subject = SubjectOf(member.path);
    ReadToShow result = ReadMember(member, watch, subject);
    if (watch.IsStopped()) result = Stopped();
    result.subject = std::move(subject);
    TellStoppedPlugins(view, result);
    return result;
}

ReadToShow ReadBlockToShow(HLOCAL block, const std::wstring& name, PictureView& view) {
    if (PluginCallUnderWay()) return {};
    ViewWatch watch(view);
    ReadToShow result = Told({}, ReadPicture(block, name, watch.Functions()), name);
    return watch.IsStopped() ? Stopped() : std::move(result);
}

}  // namespace tessary
