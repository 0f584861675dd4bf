#include "picture/ahead/ahead_reader.h"

#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "picture/read/arrangement.h"
#include "plugin/call_watch.h"
#include "plugin/long_run.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// Milliseconds without work, behind which memory and the plug-ins' files are given back.
constexpr DWORD kRest = 30'000;

// One look at what is wanted.
class Attempt {
  public:
    Attempt(const AheadTask& task, const AheadSource& source) : task_(task), source_(source) {}

    // Nothing: there is no picture that could be shown as it is.
    std::optional<AheadPicture> Read() {
        const std::optional<FileStamp> stamp = ExactStampOf(task_.entry.path);
        if (!stamp || !source_.mayRead(task_.entry.path)) return std::nullopt;
        SusieCollection().PreferNobody();
        AheadPicture picture{.entry = task_.entry, .stamp = *stamp};
        const bool isRead = task_.entry.member == 0 ? ReadFile(picture) : ReadMember(picture);
        if (!isRead || !IsGood(picture.read) || ExactStampOf(task_.entry.path) != stamp) {
            return std::nullopt;
        }
        if (task_.prepare) picture.prepared = task_.prepare(picture.read.picture);
        if (source_.make) Make(picture);
        return picture;
    }

  private:
    bool IsWanted() const { return task_.progress->isWanted; }
    bool Tell(int done, int total) const {
        task_.progress->done = done;
        task_.progress->total = total;
        return IsWanted();
    }

    ReadWatch Watch() const {
        return {[this](int done, int total) { return Tell(done, total); },
                [this] { return !IsWanted(); }, source_.takesOwnColors, task_.enough};
    }

    void Make(AheadPicture& picture) const {
        picture.made =
            source_.make(picture.read, [this](int percent) { return Tell(percent, 100); });
        if (picture.made) picture.read.picture = {};
    }

    static bool IsGood(const ReadResult& read) {
        return IsPictureKind(read.kind) && read.picture && !read.isStopped;
    }

    bool ReadFile(AheadPicture& picture) {
        const SourceFile file = LookAtFile(task_.entry.path);
        if (file.kind == kFileArchive) return source_.opensArchives && ReadFirstPage(picture);
        picture.entry.atEnd = false;
        if (!IsPictureKind(file.kind)) return false;
        picture.read = ReadPage(file, task_.entry.page, Watch());
        TellOrigin(picture.read, {.path = file.path, .stamp = picture.stamp});
        // Who took it and then failed has something to tell.
        return EqualsIgnoreCase(picture.read.plugin, file.plugin);
    }

    // An archive's own picture is the one that it is opened with.
    bool ReadFirstPage(AheadPicture& picture) {
        clsSusie* const archive = SusieCollection().ArchiveToList(task_.entry.path);
        if (archive == nullptr) return false;
        const std::vector<ListedMember> members = Arranged(
            archive->GetExpandFileList(), {task_.listing, NameKinds(SusieCollection().Known())});
        if (members.empty()) return false;
        const size_t page = OpeningMember(members, picture.entry.atEnd);
        picture.entry = {.path = task_.entry.path, .member = members[page].position};
        return ReadMember(picture);
    }

    bool ReadMember(AheadPicture& picture) {
        CollectionSusie& plugins = SusieCollection();
        clsSusie* archive = plugins.ListedArchive(task_.entry.path);
        if (archive == nullptr) archive = plugins.ArchiveToList(task_.entry.path);
        if (archive == nullptr) return false;
        const std::wstring name = archive->Files(picture.entry.member);
        const uint64_t changed = archive->FileChanged(picture.entry.member);
        const OwnedBlock content = archive->DecodeArchive(picture.entry.member, Watch().progress);
        picture.memberDamage = archive->Damage();
        picture.read = ReadPicture(content.Get(), FileNameOf(name), Watch());
        TellOrigin(picture.read,
                   {.path = task_.entry.path,
                    .stamp = picture.stamp,
                    .member = name,
                    .memberChanged = changed},
                   content.Get());
        return true;
    }

    const AheadTask& task_;
    const AheadSource& source_;
};

}  // namespace

void ReadForBoard(const std::shared_ptr<ReadingBoard>& board, const AheadSource& source) {
    const DivertedErrors untold([](const RaisedError&) {});
    std::optional<OwnPlugins> plugins;
    std::shared_ptr<const KnownPlugins> known;
    while (!board->HasEnded()) {
        const std::optional<AheadTask> task = board->TakeTask(kRest);
        if (!task) {
            plugins.reset();
            continue;
        }
        std::optional<AheadPicture> picture;
        Trapped([&] {
            if (!plugins || known != task->plugins) {
                plugins.reset();
                known = task->plugins;
                plugins.emplace(source.connect(), *known);
            }
            const CallWatch watch([&](const WaitedCall& call) {
                const bool isSilent = source.patience > 0 && call.silence > source.patience;
                const bool goesOn = task->progress->isWanted && !isSilent;
                return goesOn ? CallWish::kGoesOn : CallWish::kStops;
            });
            const uint32_t crashes = Caller().crashes;
            const LongRun run;
            picture = Attempt(*task, source).Read();
            // That has to be told and counted, where it is asked for.
            if (Caller().crashes != crashes) picture.reset();
        });
        board->Finish(*task, std::move(picture));
    }
}

}  // namespace tessary
