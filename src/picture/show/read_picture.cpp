#include "picture/show/read_picture.h"

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/bitmap_file.h"
#include "picture/show/fetched_file.h"
#include "plugin/modSusie.h"
#include "plugin/result_text.h"

namespace tessary {
namespace {

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
    return reason + L"\r\nプラグイン: " + plugin;
}

// What the plug-in has answered, in words; empty when that is not what went wrong. Call only inside
// a catch block.
std::wstring AnswerText() {
    try {
        throw;
    } catch (const DecodeError& error) {
        return ResultText(static_cast<int32_t>(error.Result() & ~kPreviewResult));
    } catch (...) {
        return {};
    }
}

// The reason of a plug-in's failure with the culprit. Call only inside a catch block.
std::wstring PluginFailureText(const std::wstring& subject, const clsSusie& plugin) {
    const std::wstring what = CurrentError().Description();
    const bool isTold = !plugin.ErrorString().empty() && plugin.ErrorString() != what;
    const std::wstring why = isTold ? plugin.ErrorString() : AnswerText();
    return FailureText(subject, WithPlugin(why.empty() ? what : what + L"\r\n" + why,
                                           SusieCollection().NameOf(plugin.DllName())));
}

ReadResult Failed(std::wstring failure) {
    return {{.failure = std::move(failure)}, {}, {}};
}

// What is left of a read that was asked to stop. It has not failed.
ReadResult Stopped() {
    return {{.stopped = true}, {}, {}};
}

// Passes on to the view how far a read is, and remembers that the view has asked it to stop: some
// plug-ins do not listen and finish their work, others report a failure.
class ReadWatch {
  public:
    explicit ReadWatch(PictureView& view) : view_(view) {}
    ReadWatch(const ReadWatch&) = delete;
    ReadWatch& operator=(const ReadWatch&) = delete;

    bool GoesOn(int done, int total) {
        view_.TellProgress(done, total);
        return !IsStopped();
    }
    // Hears what was asked for while a plug-in let nothing be heard: it was meant for this read,
    // and for what the view still shows.
    bool IsStopped() {
        if (!view_.Breathe()) stopped_ = true;
        return stopped_ || Values().quitRequested;
    }

    // The function to be told how far the work is.
    auto Progress() {
        return [this](int done, int total) { return GoesOn(done, total); };
    }

  private:
    PictureView& view_;
    bool stopped_ = false;
};

// Something that plug-ins are to decode.
struct Offer {
    std::wstring subject;
    Search search;
    // Whether an archive plug-in that takes it has read it. Otherwise a picture plug-in may still
    // know better.
    bool archivesAreRead;
};

// Offers it to the plug-ins in trial order until one has decoded it.
ReadResult OfferToPlugins(Offer offer, ReadWatch& watch) {
    const CollectionSusie& plugins = SusieCollection();
    ShownFile file;
    while (clsSusie* const found = offer.search.Next()) {
        clsSusie& plugin = *found;
        const std::wstring name = plugins.NameOf(plugin.DllName());
        if (plugin.DllStyle() == kStyleArchive) {
            file = {.kind = kFileArchive, .pluginName = name};
            if (offer.archivesAreRead) break;
            continue;
        }
        try {
            Picture picture;
            plugin.DecodePicture(DecodeTarget::kMemory, 0, watch.Progress(), {}, &picture);
            if (watch.IsStopped()) return Stopped();
            return {{.kind = kFilePicture, .pluginName = name, .damage = plugin.Damage()},
                    std::move(picture),
                    {}};
        } catch (...) {
            if (watch.IsStopped()) return Stopped();
            file.failure = PluginFailureText(offer.subject, plugin);
            offer.search.NoteFailure();
        }
    }
    if (file.kind == kFileArchive) file.failure.clear();
    const auto& refusal = offer.search.LastRefusal();
    if (file.kind == kFileUnknown && file.failure.empty() && refusal) {
        file.failure = FailureText(offer.subject,
                                   WithPlugin(refusal->reason, plugins.NameOf(refusal->dllName)));
    }
    return {file, {}, {}};
}

// Says so, for as long as it holds: with what is not shown, and in the status bar.
void TellStoppedPlugins(PictureView& view, ReadResult& result) {
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
ReadResult DecodeFile(const std::wstring& path, ReadWatch& watch) {
    CollectionSusie& plugins = SusieCollection();
    ReadResult result = OfferToPlugins({SubjectOf(path), plugins.SearchFor(path), true}, watch);
    if (result.file.kind == kFileUnknown && !result.file.stopped && IsEmptyFile(path)) {
        result.file.failure = FailureText(SubjectOf(path), kEmptyFileText);
    }
    // Nothing stays bound to a picture: its file may change on disk, and its plug-in may be freed.
    // An archive stays bound, for its members.
    if (result.file.kind != kFileArchive) plugins.UnloadFile();
    return result;
}

// Until its end plug-ins may be bound to blocks.
struct BlockUse {
    ~BlockUse() { SusieCollection().UnloadMemory(); }
};

ReadResult DecodeBlock(HLOCAL block, const std::wstring& name, const std::wstring& subject,
                       ReadWatch& watch) {
    const BlockUse use;
    return OfferToPlugins({subject, SusieCollection().SearchFor(block, name), false}, watch);
}

// A bitmap that was read, or, if it could not be, what plug-ins make of it: it is damaged, or no
// bitmap after all.
template <typename DecodeByPlugins>
ReadResult BitmapOr(Picture picture, std::wstring damage, const std::wstring& subject,
                    ReadWatch& watch, DecodeByPlugins decodeByPlugins) {
    if (watch.IsStopped()) return Stopped();
    if (picture) {
        return {{.kind = kFileBitmap, .damage = std::move(damage)}, std::move(picture), {}};
    }
    ReadResult result = decodeByPlugins();
    if (result.file.kind == kFileUnknown && result.file.failure.empty()) {
        result.file.failure = FailureText(subject, kBrokenBitmapText);
    }
    return result;
}

ReadResult ReadBlock(HLOCAL block, const std::wstring& name, const std::wstring& subject,
                     ReadWatch& watch) {
    const auto decode = [&] { return DecodeBlock(block, name, subject, watch); };
    if (!IsBitmapBlock(block)) return decode();
    std::wstring damage;
    Picture picture = ReadBitmapBlock(block, watch.Progress(), damage);
    return BitmapOr(std::move(picture), std::move(damage), subject, watch, decode);
}

ReadResult ReadFileAt(const std::wstring& path, ReadWatch& watch) {
    std::wstring failure;
    switch (IsBITMAPFile(path, failure)) {
        case BitmapCheck::kUnreadable:
            return Failed(std::move(failure));
        case BitmapCheck::kNo:
            return DecodeFile(path, watch);
        case BitmapCheck::kYes:
            break;
    }
    Picture picture;
    std::wstring damage;
    ReadBitmapFile(path, picture, watch.Progress(), &damage);
    return BitmapOr(std::move(picture), std::move(damage), SubjectOf(path), watch,
                    [&] { return DecodeFile(path, watch); });
}

ReadResult FetchAndRead(const std::wstring& path, PictureView& view, ReadWatch& watch) {
    std::wstring failure;
    switch (FetchToShow(path, view, failure)) {
        case FetchEnd::kPassedBy:
            return {{.passedBy = true}, {}, {}};
        case FetchEnd::kStopped:
            return Stopped();
        case FetchEnd::kFailed:
            return Failed(FailureText(SubjectOf(path), failure));
        case FetchEnd::kIsHere:
            break;
    }
    return ReadFileAt(path, watch);
}

// `subject` receives how messages name the member.
ReadResult ReadMember(const std::wstring& archivePath, int32_t position, ReadWatch& watch,
                      std::wstring& subject) {
    if (PluginCallUnderWay()) return {};
    clsSusie* const archive = SusieCollection().ListedArchive(archivePath);
    if (archive == nullptr) return Failed(FailureText(subject, kNoArchiveText));
    std::wstring name;
    OwnedBlock content;
    std::wstring damage;
    try {
        name = archive->Files(position);
        subject = SubjectOf(archivePath, name);
        content = archive->DecodeArchive(position, watch.Progress());
        damage = archive->Damage();
    } catch (...) {
        if (watch.IsStopped()) return Stopped();
        return Failed(PluginFailureText(subject, *archive));
    }
    if (watch.IsStopped()) return Stopped();
    ReadResult result = ReadBlock(content.Get(), FileNameOf(name), subject, watch);
    // What the member lacks is the cause of what its picture lacks.
    if (IsPictureKind(result.file.kind) && !damage.empty()) result.file.damage = std::move(damage);
    return result;
}

}  // namespace

std::wstring FailureText(const std::wstring& subject, const std::wstring& reason) {
    return subject + L" を表示できません。\r\n" + reason;
}

ReadResult ReadPictureFile(const std::wstring& path, PictureView& view) {
    ReadWatch watch(view);
    ReadResult result = FetchAndRead(path, view, watch);
    if (watch.IsStopped()) {
        SusieCollection().UnloadFile();
        result = Stopped();
    }
    result.subject = SubjectOf(path);
    TellStoppedPlugins(view, result);
    return result;
}

ReadResult ReadArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view) {
    ReadWatch watch(view);
    std::wstring subject = SubjectOf(archivePath);
    ReadResult result = ReadMember(archivePath, position, watch, subject);
    if (watch.IsStopped()) result = Stopped();
    result.subject = std::move(subject);
    TellStoppedPlugins(view, result);
    return result;
}

}  // namespace tessary
