#include "plugin/CollectionSusie.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/plugin_log.h"

namespace tessary {

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
    StartOver();
    skipped_.clear();
    memory_.reset();
}

void CollectionSusie::StartOver() {
    if (PluginCallUnderWay()) return;
    order_.members.clear();
    leftOut_.clear();
    ForgetSearches();
}

int32_t CollectionSusie::Compact() {
    if (PluginCallUnderWay()) return Count();
    std::erase_if(order_.members, [](const auto& member) { return member->DllName().empty(); });
    ForgetSearches();
    return Count();
}

std::unique_ptr<clsSusie> CollectionSusie::MakeMember() {
    auto made = std::make_unique<clsSusie>();
    made->SetAutoUnload(dynamicLoad_);
    made->SetCheckMode(!order_.tryAll);
    if (memory_) {
        made->OnTold([this](const clsSusie& plugin, bool isGood) {
            if (isGood) {
                memory_->Update(plugin.DllName(), plugin.Traits());
            } else {
                memory_->Forget(plugin.DllName());
            }
        });
    }
    return made;
}

std::vector<KnownPlugin> CollectionSusie::Known() const {
    std::vector<KnownPlugin> known;
    for (const auto& member : order_.members)
        known.push_back({member->DllName(), member->Traits(), StampOf(member->DllName())});
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

bool CollectionSusie::IsIncomplete() const {
    return IsWaiting() || std::ranges::any_of(leftOut_, [](const LeftOutPlugin& one) {
               return one.reason == LeftOutReason::kSkipped ||
                      one.reason == LeftOutReason::kNoHost ||
                      (one.reason == LeftOutReason::kNoFolder && IsFolder(one.path));
           });
}

void CollectionSusie::ForgetErrorsOfLeftOut(const std::wstring& path) {
    ForgetFailures(path);
    for (LeftOutPlugin& one : leftOut_) {
        if (IsBarredReason(one.reason) && EqualsIgnoreCase(one.path, path))
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
    if (total <= 0) return 0;
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
