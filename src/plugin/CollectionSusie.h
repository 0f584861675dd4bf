// All plug-ins, in the order in which they are tried: the one that answers which of them can read a
// file.
//
// While a plug-in is being called (PluginCallUnderWay) a search finds nothing, and nothing is
// added, removed or unbound.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/call_log.h"
#include "plugin/clsSusie.h"
#include "plugin/file_stamp.h"
#include "plugin/left_out_plugin.h"
#include "plugin/plugin_memory.h"
#include "plugin/search.h"

namespace tessary {

// A plug-in's file and what is known of it: all that another collection needs to have it.
struct KnownPlugin {
    std::wstring path;
    PluginTraits traits;
    std::optional<FileStamp> stamp;  // of the file, when this was asked for

    bool operator==(const KnownPlugin&) const = default;
};

// Whom a loading asks what it is.
enum class Asking {
    kAll,
    kUnknown,  // those of which nothing is remembered (plugin_memory.h), or no longer so
    kNobody,   // and those wait (kWaiting)
};

class CollectionSusie {
  public:
    // Shows a message when susiectl.dll is missing; the collection then stays empty.
    CollectionSusie();
    CollectionSusie(const CollectionSusie&) = delete;
    CollectionSusie& operator=(const CollectionSusie&) = delete;

    // Plug-ins are loaded only while they are used; a change applies to all members.
    void SetDynamicLoad(bool dynamicLoad);

    // A file that no plug-in claims by its patterns is offered to every one. When off, plug-ins are
    // asked only about files that they claim; a change applies to all members.
    void SetTryAll(bool tryAll);
    bool TriesAll() const { return order_.tryAll; }

    // --- Members: indexes count from 1 ---

    int32_t Count() const { return static_cast<int32_t>(order_.members.size()); }
    // Raises PluginError (kErrorInvalidArgument) for an index outside the collection. References
    // last until the member is removed.
    clsSusie& Item(int32_t index);
    // The member of that plug-in file; null when there is none.
    clsSusie* Item(std::wstring_view dllName);
    std::span<const std::unique_ptr<clsSusie>> NewEnum() const { return order_.members; }

    void Remove(int32_t index);
    void RemoveAll();
    // Removes the members for another look at the same files: those that are skipped this time stay
    // so, and what is remembered was read.
    void StartOver();
    // Removes the members whose plug-in turned out to be unusable; answers the new Count.
    int32_t Compact();

    // The plug-in files (`*.spi`) of a folder, as full paths in listing order.
    static std::vector<std::wstring> PluginFiles(const std::wstring& folder);

    // From the next BeginLoading on, what plug-ins tell about themselves is remembered
    // (plugin_memory.h).
    void RememberPlugins() { isRemembering_ = true; }
    // Which plug-ins the following AddSPI and scans ask (all, as long as nothing is remembered);
    // and that they have looked through these folders, with a trailing backslash.
    void BeginLoading(Asking asking);
    void EndLoading(std::span<const std::wstring> folders);

    // Whether a plug-in file may be asked now; false leaves it out (kWaiting), unless what it tells
    // is remembered.
    using ScanStep = std::function<bool(const std::wstring& path)>;

    // Adds the plug-ins of a folder and answers Count. With more than 50 plug-ins dynamic loading
    // is switched on. First counts the failures that ended earlier runs; a plug-in that was being
    // loaded then is left out until RemoveAll. `step` is asked before each file and may let
    // messages run; empty: all are added.
    int32_t FScanAllSPI(const std::wstring& folder, const ScanStep& step = {});

    // Adds one plug-in before all that have failed at least as often. One that proves unusable
    // takes a place too, with an empty DllName, as does one that must not be loaded (kBarred,
    // kSkipped); one that is there already is not added again.
    void AddSPI(const std::wstring& path);

    // The members, in their order; and adds such behind all others, in that order. Nothing is asked
    // or loaded, until something is wanted of a plug-in.
    std::vector<KnownPlugin> Known() const;
    void AddKnown(const std::vector<KnownPlugin>& plugins);

    // Forgets a member's failures and gives it the place of one that has none: indexes change.
    // Raises PluginError for an index outside the collection, and while a plug-in is being called.
    void ForgetErrors(int32_t index);

    // RefreshInfo of every member: settings windows of plug-ins may have been closed meanwhile.
    void RefreshInfo() {
        for (const auto& member : order_.members)
            member->RefreshInfo();
        query_ = {};
    }

    // The files that AddSPI or a scan has met and that gave no plug-in, and folders that gave none,
    // in the order of their meeting.
    const std::vector<LeftOutPlugin>& LeftOut() const { return leftOut_; }
    // Whether some plug-ins wait (kWaiting).
    bool IsWaiting() const;
    // Whether loading all plug-ins anew may bring more: some wait (kWaiting, kSkipped), or a folder
    // that was away (kNoFolder) is there now, at which the system is asked to look.
    bool IsIncomplete() const;
    // Forgets the failures of one that was left out; a barred one waits for the next loading then.
    // Raises RaisedError when the store cannot be accessed.
    void ForgetErrorsOfLeftOut(const std::wstring& path);

    // Notes a whole folder that gave no plug-in: kNoFolder or kEmptyFolder.
    void NoteFolder(const std::wstring& folder, LeftOutReason reason) {
        NoteLeftOut(folder, reason);
    }

    // The plug-in calls in which earlier runs ended, as scans have found them.
    const std::vector<PluginCall>& InterruptedCalls() const { return interruptedCalls_; }

    // How messages and lists call a plug-in's file: by its name; where files of that name lie in
    // several folders, with as much of its folder before it as tells them apart.
    std::wstring NameOf(const std::wstring& path) const;

    // --- Use (search.h tells the order in which members are asked) ---

    // The search for a plug-in that can read the file. Every member is unbound first, for the file
    // may have changed; only what QueryFile has just found out about the same file is taken over.
    Search SearchFor(const std::wstring& path);
    // The same for a block, which must live until UnloadMemory. Members stay bound to files.
    Search SearchFor(HLOCAL memory, const std::wstring& fileName);

    // The index of the first member, from `startIndex` on, that accepts the file or block as Search
    // says, and 0 when none does.
    int32_t FileSupported(const std::wstring& path, int32_t startIndex = 1);
    int32_t MemorySupported(HLOCAL memory, const std::wstring& fileName, int32_t startIndex = 1);

    // The first that a search for the file finds, for somebody who is likely to begin that search
    // next, or to ask once more; null when there is none. It stays bound.
    clsSusie* QueryFile(const std::wstring& path);
    // From now on nobody is preferred for having accepted last.
    void PreferNobody() { ForgetSearches(); }
    // A search for the file elsewhere, by the same plug-ins and with nobody preferred, has found
    // that one. Whether it would be found here too; then it is the one that has accepted last.
    bool TakeOver(const std::wstring& path, std::wstring_view dllName);

    // What the last query's search tells of refusals.
    const std::optional<Search::Refusal>& LastRefusal() const {
        return query_.search.LastRefusal();
    }
    // The first member that names the file in its patterns, other than with one for every file, for
    // those who must not have the file opened; null when none does.
    const clsSusie* FirstNaming(const std::wstring& path) const;

    // The archive plug-in that is bound to the file; when none is, the first that accepts it, as
    // FileSupported finds it. Null when there is none.
    clsSusie* ArchivePlugin(const std::wstring& path);
    // The same for somebody who is about to list the members, and for one who extracts by that
    // list: null also when the file has changed since, for the list's positions then mean nothing.
    clsSusie* ArchiveToList(const std::wstring& path);
    clsSusie* ListedArchive(const std::wstring& path);

    // Unbinds every member; every member that is bound to a block.
    void UnloadFile();
    void UnloadMemory();

    // How many members' files are loaded at the moment.
    int32_t GetInMemorySPICount() const;

    // The filter of the open dialog: pairs of description and patterns, each text followed by `|`.
    std::wstring GetCommonDialogString() const;

  private:
    // What QueryFile has found out.
    struct Query {
        Search search;
        FileStamp stamp;
    };

    // The archive whose members are listed.
    struct Listing {
        std::wstring path;
        std::optional<FileStamp> stamp;
        std::wstring dllName;  // of the plug-in that listed them; empty: none did
    };

    static bool Holds(Query& query, const std::wstring& path);
    int32_t IndexOf(const clsSusie* member) const;
    std::unique_ptr<clsSusie> MakeMember();
    // To be called when members have come, gone or moved.
    void ForgetSearches();
    bool Add(const std::wstring& path, Asking asking);
    std::optional<LeftOutReason> LoadPlugin(clsSusie& added, const std::wstring& path,
                                            Asking asking, uint32_t& loadError);
    std::optional<LeftOutReason> TryOut(clsSusie& added, const std::wstring& plugin,
                                        uint32_t& loadError);
    void Remember(const std::wstring& plugin, const FileStamp& stamp, const clsSusie& added,
                  std::optional<LeftOutReason> refusal);
    void NoteLeftOut(const std::wstring& path, std::optional<LeftOutReason> reason,
                     uint32_t loadError = 0);
    int32_t InsertionIndex(int32_t total) const;

    // Before the members, which tell it.
    std::optional<PluginMemory> memory_;
    bool isRemembering_ = false;
    Asking asking_ = Asking::kAll;
    TrialOrder order_;
    bool dynamicLoad_ = false;
    Listing listing_;
    Query query_;
    std::vector<PluginCall> interruptedCalls_;
    std::set<std::wstring> skipped_;  // not to be loaded this time: paths or names in upper case
    std::vector<LeftOutPlugin> leftOut_;
};

}  // namespace tessary
