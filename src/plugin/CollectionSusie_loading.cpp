// Which plug-ins there are: looking through a folder, and finding out about one file.
#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "helpers/susiectl/susiectl.h"
#include "plugin/CollectionSusie.h"
#include "plugin/no_host.h"
#include "plugin/plugin_log.h"
#include "plugin/renamed_plugin.h"

namespace tessary {
namespace {

// From this many plug-ins on none is kept loaded.
constexpr int32_t kDynamicLoadCount = 51;

}  // namespace

void CollectionSusie::BeginLoading(Asking asking) {
    asking_ = asking;
    if (isRemembering_ && !memory_) memory_.emplace();
}

void CollectionSusie::EndLoading(std::span<const std::wstring> folders) {
    if (memory_ && !IsWaiting()) memory_->ForgetGone(folders);
}

bool CollectionSusie::IsWaiting() const {
    return std::ranges::find(leftOut_, LeftOutReason::kWaiting, &LeftOutPlugin::reason) !=
           leftOut_.end();
}

std::vector<std::wstring> CollectionSusie::PluginFiles(const std::wstring& folder) {
    return FilesInFolder(folder, L"*.spi");
}

int32_t CollectionSusie::FScanAllSPI(const std::wstring& folder, const ScanStep& step) {
    // What has been damaged in this run is for the next one to find.
    if (PluginCallUnderWay() || PluginsAreStopped()) return Count();
    for (PluginCall& call : RecoverInterruptedCalls()) {
        if (call.WhileLoading()) skipped_.insert(ToUpper(call.plugin));
        interruptedCalls_.push_back(std::move(call));
    }
    if (!CanCallPlugins() || !IsFolder(folder)) return Count();
    int32_t count = Count();
    for (const std::wstring& path : PluginFiles(folder)) {
        if (PluginsAreStopped()) {
            NoteLeftOut(path, LeftOutReason::kWaiting);
            continue;
        }
        // Whoever does not want to wait for the rest still has those that are remembered.
        const bool goesOn = !step || step(path);
        if (!Add(path, goesOn ? asking_ : Asking::kNobody)) continue;
        if (++count >= kDynamicLoadCount && !dynamicLoad_) SetDynamicLoad(true);
    }
    return Count();
}

void CollectionSusie::AddSPI(const std::wstring& path) {
    if (!PluginCallUnderWay()) Add(path, asking_);
}

// False when it has to wait.
bool CollectionSusie::Add(const std::wstring& path, Asking asking) {
    if (Item(FullPathOf(path)) != nullptr) return true;
    std::unique_ptr<clsSusie> added = MakeMember();
    uint32_t loadError = 0;
    const std::optional<LeftOutReason> refusal = LoadPlugin(*added, path, asking, loadError);
    NoteLeftOut(path, refusal, loadError);
    if (refusal == LeftOutReason::kWaiting) return false;
    order_.members.insert(order_.members.begin() + InsertionIndex(added->ErrorCount({})),
                          std::move(added));
    ForgetSearches();
    return true;
}

// Whatever the store refuses to tell or to note, a plug-in that works is loaded.
std::optional<LeftOutReason> CollectionSusie::LoadPlugin(clsSusie& added, const std::wstring& path,
                                                         Asking asking, uint32_t& loadError) {
    const std::wstring plugin = FullPathOf(path);
    const std::optional<FileStamp> stamp = memory_ ? StampOf(plugin) : std::nullopt;
    const RememberedPlugin* known = stamp ? memory_->Find(plugin, *stamp) : nullptr;
    if (asking == Asking::kAll) known = nullptr;
    if (known == nullptr && asking == Asking::kNobody) return LeftOutReason::kWaiting;
    // A replaced file must not be judged by the failures of the one before.
    const bool isNew = known == nullptr && Trapped(false, [&] { return CheckFileDate(plugin); });
    if (const auto barred = WhyBarred(plugin)) return barred;
    const auto isSkipped = [&](const std::wstring& name) {
        return skipped_.contains(ToUpper(name));
    };
    if (!isNew && (isSkipped(plugin) || isSkipped(FileNameOf(plugin)))) {
        return LeftOutReason::kSkipped;
    }
    std::optional<LeftOutReason> refusal;
    if (known != nullptr) {
        refusal = known->refusal;
        if (!refusal) added.SetKnownDll(plugin, known->traits);
    } else {
        refusal = TryOut(added, plugin, loadError);
        if (stamp && !PluginsAreStopped()) Remember(plugin, *stamp, added, refusal);
    }
    if (!refusal && IsRenamedPlugin(path, added.ProductName())) {
        refusal = LeftOutReason::kRenamed;
        Trapped([&] { added.SetDllName({}); });  // raises, when it has let go of it
    }
    return refusal;
}

std::optional<LeftOutReason> CollectionSusie::TryOut(clsSusie& added, const std::wstring& plugin,
                                                     uint32_t& loadError) {
    std::optional<LeftOutReason> refusal;
    try {
        added.SetDllName(plugin);
    } catch (const RefusedPluginError& error) {
        loadError = error.LoadError();
        refusal = error.IsLoadable() ? LeftOutReason::kNoPlugin : WhyNotLoaded(plugin, loadError);
    } catch (const PluginError& error) {
        if (error.Number() == kErrorGivenUp) return LeftOutReason::kWaiting;
        refusal = LeftOutReason::kNotLoadable;
    } catch (...) {
        refusal = LeftOutReason::kNotLoadable;
    }
    if (PluginsAreStopped()) return refusal;
    // One that was refused has not ended the program either, but perhaps a process of its own.
    if (loadError != susiectl::kErrorCrashed && !IsNoHost(loadError)) {
        Trapped([&] { NoteLoaded(plugin); });
    }
    return refusal;
}

// What was told by one that has failed meanwhile may not be all.
void CollectionSusie::Remember(const std::wstring& plugin, const FileStamp& stamp,
                               const clsSusie& added, std::optional<LeftOutReason> refusal) {
    if (refusal) {
        memory_->Keep(plugin, {stamp, refusal});
    } else if (added.ErrorSerial() == 0) {
        memory_->Keep(plugin, {stamp, {}, added.Traits()});
    } else {
        memory_->Forget(plugin);
    }
}

void CollectionSusie::NoteLeftOut(const std::wstring& path, std::optional<LeftOutReason> reason,
                                  uint32_t loadError) {
    std::wstring full = FullPathOf(path);
    std::erase_if(leftOut_, [&](const auto& one) { return EqualsIgnoreCase(one.path, full); });
    // A file in two of the folders may be there already.
    if (reason && Item(full) == nullptr) leftOut_.push_back({std::move(full), *reason, loadError});
}

}  // namespace tessary
