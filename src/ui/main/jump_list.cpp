#include "ui/main/jump_list.h"

#include <objbase.h>
// The list's interfaces need the types of windows.h.
#include <propsys.h>
#include <shlobj.h>

#include <algorithm>

#include "app/base/com_object.h"
#include "app/base/paths.h"
#include "places/place.h"
#include "places/place_memory.h"

namespace tessary {
namespace {

constexpr DWORD kLongestWait = 2000;  // milliseconds
constexpr wchar_t kCategory[] = L"最近使ったもの";
constexpr size_t kLongestArguments = 1024;  // of a link, by the system's documentation
constexpr size_t kLongestTip = 250;
constexpr PROPERTYKEY kTitle{
    {0xF29F85E0, 0x4FF9, 0x1068, {0xAB, 0x91, 0x08, 0x00, 0x2B, 0x27, 0xB3, 0xD9}}, 2};

std::wstring Quoted(const std::wstring& path) {
    return L'"' + path + L'"';
}

std::wstring ProgramPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

// Starts the program with that path.
UniqueInterface<IShellLinkW> LinkTo(const std::wstring& path, const std::wstring& program) {
    UniqueInterface<IShellLinkW> link = Create<IShellLinkW>(CLSID_ShellLink);
    if (!link) return {};
    link->SetPath(program.c_str());
    link->SetArguments(Quoted(path).c_str());
    link->SetIconLocation(program.c_str(), 0);
    link->SetDescription(ShortenedPath(path, kLongestTip).c_str());
    const UniqueInterface<IPropertyStore> properties = Query<IPropertyStore>(link.get());
    if (!properties) return {};
    std::wstring name = FileNameOf(RemoveBackslash(path));
    if (!path.ends_with(L'\\')) name = FileNameOf(path);
    if (name.empty()) name = path;
    PROPVARIANT title{};
    title.vt = VT_LPWSTR;
    title.pwszVal = name.data();  // only read
    if (FAILED(properties->SetValue(kTitle, title)) || FAILED(properties->Commit())) return {};
    return link;
}

// The system refuses a list that has them.
std::vector<std::wstring> RemovedByUser(IObjectArray& removed) {
    std::vector<std::wstring> arguments;
    UINT count = 0;
    removed.GetCount(&count);
    for (UINT i = 0; i < count; ++i) {
        void* link = nullptr;
        if (FAILED(removed.GetAt(i, __uuidof(IShellLinkW), &link))) continue;
        const UniqueInterface<IShellLinkW> owned(static_cast<IShellLinkW*>(link));
        std::wstring text(kLongestArguments + 1, L'\0');
        if (FAILED(owned->GetArguments(text.data(), static_cast<int>(text.size())))) continue;
        arguments.emplace_back(text.c_str());
    }
    return arguments;
}

void Fill(ICustomDestinationList& list) {
    UINT slots = 0;
    void* removedArray = nullptr;
    if (FAILED(list.BeginList(&slots, __uuidof(IObjectArray), &removedArray)) ||
        removedArray == nullptr) {
        return;
    }
    const UniqueInterface<IObjectArray> removed(static_cast<IObjectArray*>(removedArray));
    const std::vector<std::wstring> gone = RemovedByUser(*removed);
    const UniqueInterface<IObjectCollection> links =
        Create<IObjectCollection>(CLSID_EnumerableObjectCollection);
    const std::wstring program = ProgramPath();
    UINT count = 0;
    for (const std::wstring& path : RecentPaths()) {
        if (!links || count == slots) break;
        if (std::ranges::find(gone, Quoted(path)) != gone.end()) {
            DropRecent(path);
            continue;
        }
        if (path.size() + 2 >= kLongestArguments) continue;
        const UniqueInterface<IShellLinkW> link = LinkTo(path, program);
        if (link && SUCCEEDED(links->AddObject(link.get()))) ++count;
    }
    if (count == 0 || FAILED(list.AppendCategory(kCategory, links.get()))) {
        list.AbortList();
        return;
    }
    list.CommitList();
}

void ShowNow() {
    const ComSession com;
    if (const auto list = Create<ICustomDestinationList>(CLSID_DestinationList)) {
        RecentPaths().empty() ? static_cast<void>(list->DeleteList(nullptr)) : Fill(*list);
    }
}

}  // namespace

JumpList::~JumpList() {
    if (worker_) worker_->HasEndedWithin(kLongestWait);
}

void JumpList::ShowRecent() {
    // What an older one shows is not to come behind.
    if (worker_) worker_->HasEndedWithin(kLongestWait);
    worker_.emplace([] { ShowNow(); });
}

}  // namespace tessary
