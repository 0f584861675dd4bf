#include "plugin/CollectionSusie.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
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
    members_.erase(members_.begin() + index - 1);
    lastSuccess_ = 0;
}

void CollectionSusie::RemoveAll() {
    members_.clear();
    lastSuccess_ = 0;
}

int32_t CollectionSusie::Compact() {
    std::erase_if(members_, [](const auto& member) { return member->DllName().empty(); });
    lastSuccess_ = 0;
    return Count();
}

int32_t CollectionSusie::FScanAllSPI(const std::wstring& folder) {
    if (auto call = RecoverInterruptedCall()) interruptedCall_ = std::move(call);
    if (FindSusieLibrary() == nullptr || !IsFolder(folder)) return Count();
    int32_t count = Count();
    for (const std::wstring& path : FilesInFolder(folder, L"*.spi")) {
        // The system's listing also has files of which only the short name matches.
        if (UpperExtensionOf(path) != L"SPI") continue;
        AddSPI(path);
        if (++count >= kDynamicLoadCount && !dynamicLoad_) SetDynamicLoad(true);
    }
    return Count();
}

void CollectionSusie::AddSPI(const std::wstring& path) {
    if (Item(FullPathOf(path)) != nullptr) return;
    const std::wstring plugin = FileNameOf(path);
    auto added = std::make_unique<clsSusie>();
    added->SetAutoUnload(dynamicLoad_);
    added->SetCheckMode(!tryAll_);
    int32_t total = 0;
    try {
        // A replaced file must not be judged by the failures of the one before.
        CheckFileDate(path);
        if (!KeepsEndingTheProgram(plugin)) {
            added->SetDllName(path);
            NoteLoaded(plugin);
        }
        total = added->ErrorCount({});
    } catch (const RaisedError&) {
        // It stays unusable, or has no history.
    }
    members_.insert(members_.begin() + InsertionIndex(total), std::move(added));
    lastSuccess_ = 0;
}

int32_t CollectionSusie::InsertionIndex(int32_t total) const {
    const auto at = std::find_if(members_.begin(), members_.end(), [&](const auto& member) {
        return member->ErrorCount({}) >= total;
    });
    return static_cast<int32_t>(at - members_.begin());
}

void CollectionSusie::UnloadFile() {
    for (const auto& member : members_)
        Trapped([&] { member->SetFile({}); });
}

int32_t CollectionSusie::GetInMemorySPICount() const {
    return static_cast<int32_t>(
        std::count_if(members_.begin(), members_.end(), [](const auto& member) {
            return !member->DllName().empty() &&
                   GetModuleHandleW(member->DllName().c_str()) != nullptr;
        }));
}

}  // namespace tessary
