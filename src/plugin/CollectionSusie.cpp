#include "plugin/CollectionSusie.h"
#include "helpers/susiectl/susiectl.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/plugin_log.h"
#include "plugin/renamed_plugin.h"

namespace tessary {
namespace {

// From this many plug-ins on none is kept loaded.
constexpr int32_t kDynamicLoadCount = 51;

}  // namespace

CollectionSusie::CollectionSusie() {
    if (!CanCallPlugins()) ShowMessageBox(L"SUSIECTL.DLL が見つかりません");
}

void CollectionSusie::SetDynamicLoad(bool dynamicLoad) {
    dynamicLoad_ = dynamicLoad;
    for (const auto& member : order_.members)
        member->SetAutoUnload(dynamicLoad);
}

void CollectionSusie::SetTryAll(bool tryAll) {
    order_.tryAll = tryAll;
    for (const auto& member : order_.members)
        member->SetCheckMode(!tryAll);
    query_ = {};
}

clsSusie& CollectionSusie::Item(int32_t index) {
    if (index < 1 || index > Count()) {
        throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
    }
    return *order_.members[static_cast<size_t>(index) - 1];
}

clsSusie* CollectionSusie::Item(std::wstring_view dllName) {
    if (dllName.empty()) return nullptr;
    for (const auto& member : order_.members) {
        if (EqualsIgnoreCase(member->DllName(), dllName)) return member.get();
    }
    return nullptr;
}

void CollectionSusie::Remove(int32_t index) {
    Item(index);  // refuses what is outside
    if (PluginCallUnderWay()) return;
    order_.members.erase(order_.members.begin() + index - 1);
    ForgetSearches();
}

void CollectionSusie::RemoveAll() {
    if (PluginCallUnderWay()) return;
    order_.members.clear();
    leftOut_.clear();
    skipped_.clear();
    ForgetSearches();
}

int32_t CollectionSusie::Compact() {
    if (PluginCallUnderWay()) return Count();
    std::erase_if(order_.members, [](const auto& member) { return member->DllName().empty(); });
    ForgetSearches();
    return Count();
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
        if (PluginsAreStopped() || (step && !step(path))) {
            NoteLeftOut(path, LeftOutReason::kWaiting);
            continue;
        }
        AddSPI(path);
        if (++count >= kDynamicLoadCount && !dynamicLoad_) SetDynamicLoad(true);
    }
    return Count();
}

std::unique_ptr<clsSusie> CollectionSusie::MakeMember() const {
    auto made = std::make_unique<clsSusie>();
    made->SetAutoUnload(dynamicLoad_);
    made->SetCheckMode(!order_.tryAll);
    return made;
}

std::vector<KnownPlugin> CollectionSusie::Known() const {
    std::vector<KnownPlugin> known;
    for (const auto& member : order_.members)
        known.push_back({member->DllName(), member->Traits()});
    return known;
}

void CollectionSusie::AddKnown(const std::vector<KnownPlugin>& plugins) {
    if (PluginCallUnderWay()) return;
    for (const KnownPlugin& plugin : plugins) {
        std::unique_ptr<clsSusie> added = MakeMember();
        added->SetKnownDll(plugin.path, plugin.traits);
        order_.members.push_back(std::move(added));
    }
    ForgetSearches();
}

void CollectionSusie::AddSPI(const std::wstring& path) {
    if (PluginCallUnderWay() || Item(FullPathOf(path)) != nullptr) return;
    std::unique_ptr<clsSusie> added = MakeMember();
    uint32_t loadError = 0;
    const std::optional<LeftOutReason> refusal = LoadPlugin(*added, path, loadError);
    NoteLeftOut(path, refusal, loadError);
    order_.members.insert(order_.members.begin() + InsertionIndex(added->ErrorCount({})),
                          std::move(added));
    ForgetSearches();
}

// Whatever the store refuses to tell or to note, a plug-in that works is loaded.
std::optional<LeftOutReason> CollectionSusie::LoadPlugin(clsSusie& added, const std::wstring& path,
                                                         uint32_t& loadError) {
    const std::wstring plugin = FullPathOf(path);
    // A replaced file must not be judged by the failures of the one before.
    const bool isNew = Trapped(false, [&] { return CheckFileDate(plugin); });
    if (Trapped(false, [&] { return KeepsEndingTheProgram(plugin); })) {
        return LeftOutReason::kBarred;
    }
    const auto isSkipped = [&](const std::wstring& name) {
        return skipped_.contains(ToUpper(name));
    };
    if (!isNew && (isSkipped(plugin) || isSkipped(FileNameOf(plugin)))) {
        return LeftOutReason::kSkipped;
    }
    std::optional<LeftOutReason> refusal;
    try {
        added.SetDllName(path);
        if (IsRenamedPlugin(path, added.ProductName())) {
            refusal = LeftOutReason::kRenamed;
            added.SetDllName({});  // raises, when it has let go of it
        }
    } catch (const RefusedPluginError& error) {
        loadError = error.LoadError();
        refusal = error.IsLoadable() ? LeftOutReason::kNoPlugin : WhyNotLoaded(path, loadError);
    } catch (...) {
        if (!refusal) refusal = LeftOutReason::kNotLoadable;
    }
    if (PluginsAreStopped()) return refusal;
    // One that was refused has not ended the program either, but perhaps a process of its own.
    if (loadError != susiectl::kErrorCrashed) Trapped([&] { NoteLoaded(plugin); });
    return refusal;
}

void CollectionSusie::NoteLeftOut(const std::wstring& path, std::optional<LeftOutReason> reason,
                                  uint32_t loadError) {
    std::wstring full = FullPathOf(path);
    std::erase_if(leftOut_, [&](const auto& one) { return EqualsIgnoreCase(one.path, full); });
    // A file in two of the folders may be there already.
    if (reason && Item(full) == nullptr) leftOut_.push_back({std::move(full), *reason, loadError});
}

bool CollectionSusie::IsIncomplete() const {
    return std::ranges::any_of(leftOut_, [](const LeftOutPlugin& one) {
        return one.reason == LeftOutReason::kWaiting || one.reason == LeftOutReason::kSkipped ||
               (one.reason == LeftOutReason::kNoFolder && IsFolder(one.path));
    });
}

void CollectionSusie::ForgetErrorsOfLeftOut(const std::wstring& path) {
    ForgetFailures(path);
    for (LeftOutPlugin& one : leftOut_) {
        if (one.reason == LeftOutReason::kBarred && EqualsIgnoreCase(one.path, path))
            one.reason = LeftOutReason::kWaiting;
    }
}

void CollectionSusie::ForgetErrors(int32_t index) {
    if (PluginCallUnderWay()) throw PluginError(kErrorCallUnderWay, kCallUnderWayText);
    Item(index).ForgetErrors();
    const auto from = order_.members.begin() + index - 1;
    auto member = std::move(*from);
    order_.members.erase(from);
    order_.members.insert(order_.members.begin() + InsertionIndex(0), std::move(member));
    ForgetSearches();
}

void CollectionSusie::ForgetSearches() {
    order_.lastSuccess = nullptr;
    query_ = {};
}

int32_t CollectionSusie::InsertionIndex(int32_t total) const {
    const auto at =
        std::find_if(order_.members.begin(), order_.members.end(),
                     [&](const auto& member) { return member->ErrorCount({}) >= total; });
    return static_cast<int32_t>(at - order_.members.begin());
}

void CollectionSusie::UnloadFile() {
    if (PluginCallUnderWay()) return;
    for (const auto& member : order_.members) {
        if (member->IsBound()) Trapped([&] { member->SetFile({}); });
    }
}

void CollectionSusie::UnloadMemory() {
    if (PluginCallUnderWay()) return;
    for (const auto& member : order_.members) {
        if (member->GetMemoryHandle() != nullptr) Trapped([&] { member->SetFile({}); });
    }
}

int32_t CollectionSusie::GetInMemorySPICount() const {
    return static_cast<int32_t>(
        std::ranges::count_if(order_.members, [](const auto& one) { return one->IsLoaded(); }));
}

}  // namespace tessary
