#include "plugin/CollectionSusie.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/plugin_log.h"
#include "plugin/renamed_plugin.h"
#include "plugin/susie_library.h"

namespace tessary {
namespace {

// From this many plug-ins on none is kept loaded.
constexpr int32_t kDynamicLoadCount = 51;

}  // namespace

CollectionSusie::CollectionSusie() {
    if (FindSusieLibrary() == nullptr) ShowMessageBox(L"SUSIECTL.DLL が見つかりません");
}

void CollectionSusie::SetDynamicLoad(bool dynamicLoad) {
    dynamicLoad_ = dynamicLoad;
    for (const auto& member : members_)
        member->SetAutoUnload(dynamicLoad);
}

void CollectionSusie::SetTryAll(bool tryAll) {
    tryAll_ = tryAll;
    for (const auto& member : members_)
        member->SetCheckMode(!tryAll);
}

clsSusie& CollectionSusie::Item(int32_t index) {
    if (index < 1 || index > Count()) {
        throw PluginError(kErrorInvalidArgument, kInvalidArgumentText);
    }
    return *members_[static_cast<size_t>(index) - 1];
}

clsSusie* CollectionSusie::Item(std::wstring_view dllName) {
    if (dllName.empty()) return nullptr;
    for (const auto& member : members_) {
        if (EqualsIgnoreCase(member->DllName(), dllName)) return member.get();
    }
    return nullptr;
}

void CollectionSusie::Remove(int32_t index) {
    Item(index);  // refuses what is outside
    if (PluginCallUnderWay()) return;
    members_.erase(members_.begin() + index - 1);
    lastSuccess_ = 0;
}

void CollectionSusie::RemoveAll() {
    if (PluginCallUnderWay()) return;
    members_.clear();
    leftOut_.clear();
    skipped_.clear();
    lastSuccess_ = 0;
}

int32_t CollectionSusie::Compact() {
    if (PluginCallUnderWay()) return Count();
    std::erase_if(members_, [](const auto& member) { return member->DllName().empty(); });
    lastSuccess_ = 0;
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
    if (FindSusieLibrary() == nullptr || !IsFolder(folder)) return Count();
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

void CollectionSusie::AddSPI(const std::wstring& path) {
    if (PluginCallUnderWay() || Item(FullPathOf(path)) != nullptr) return;
    auto added = std::make_unique<clsSusie>();
    added->SetAutoUnload(dynamicLoad_);
    added->SetCheckMode(!tryAll_);
    uint32_t loadError = 0;
    const std::optional<LeftOutReason> refusal = LoadPlugin(*added, path, loadError);
    NoteLeftOut(path, refusal, loadError);
    members_.insert(members_.begin() + InsertionIndex(added->ErrorCount({})), std::move(added));
    lastSuccess_ = 0;
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
    Trapped([&] { NoteLoaded(plugin); });  // one that was refused has not ended the program either
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
    const auto from = members_.begin() + index - 1;
    auto member = std::move(*from);
    members_.erase(from);
    members_.insert(members_.begin() + InsertionIndex(0), std::move(member));
    lastSuccess_ = 0;
    query_ = {};
}

int32_t CollectionSusie::InsertionIndex(int32_t total) const {
    const auto at = std::find_if(members_.begin(), members_.end(), [&](const auto& member) {
        return member->ErrorCount({}) >= total;
    });
    return static_cast<int32_t>(at - members_.begin());
}

void CollectionSusie::UnloadFile() {
    if (PluginCallUnderWay()) return;
    for (const auto& member : members_) {
        if (member->IsBound()) Trapped([&] { member->SetFile({}); });
    }
}

void CollectionSusie::UnloadMemory() {
    if (PluginCallUnderWay()) return;
    for (const auto& member : members_) {
        if (member->GetMemoryHandle() != nullptr) Trapped([&] { member->SetFile({}); });
    }
}

int32_t CollectionSusie::GetInMemorySPICount() const {
    return static_cast<int32_t>(
        std::count_if(members_.begin(), members_.end(), [](const auto& member) {
            return !member->DllName().empty() &&
                   GetModuleHandleW(ExtendedPath(member->DllName()).c_str()) != nullptr;
        }));
}

}  // namespace tessary
