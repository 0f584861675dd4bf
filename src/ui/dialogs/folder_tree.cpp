#include "ui/dialogs/folder_tree.h"

#include <windows.h>
// The shell needs the types of windows.h.
#include <shellapi.h>

#include <utility>
#include <vector>

#include "app/base/text.h"
#include "ui/dialogs/drives.h"
#include "ui/dialogs/folder_listing.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

// Index of the small icon that the shell shows for what has that name and attributes.
int ImageOf(const std::wstring& name, DWORD attributes, UINT flags, HIMAGELIST* images = nullptr) {
    SHFILEINFOW info{};
    const DWORD_PTR list = SHGetFileInfoW(name.c_str(), attributes, &info, sizeof(info),
                                          SHGFI_SYSICONINDEX | SHGFI_SMALLICON | flags);
    if (images != nullptr) *images = reinterpret_cast<HIMAGELIST>(list);
    return list != 0 ? info.iIcon : 0;
}

int FolderImage(bool open, HIMAGELIST* images = nullptr) {
    return ImageOf(L"folder", FILE_ATTRIBUTE_DIRECTORY,
                   SHGFI_USEFILEATTRIBUTES | (open ? SHGFI_OPENICON : 0), images);
}

TreeView::NodeDesign FolderDesign(const std::wstring& name, bool expandable) {
    return {name, FolderImage(false), FolderImage(true), expandable};
}

// The folders on the way to one, the root first; the names of all but the root.
struct Way {
    std::wstring root;
    std::vector<std::wstring> names;
};

Way WayTo(const std::wstring& folder) {
    Way way{RootOf(folder), {}};
    for (size_t at = way.root.size(); at < folder.size();) {
        const size_t end = std::min(folder.find(L'\\', at), folder.size());
        if (end > at) way.names.push_back(folder.substr(at, end - at));
        at = end + 1;
    }
    return way;
}

// The listings of all folders of the way.
std::vector<FolderListing> ListWay(const Way& way) {
    std::vector<FolderListing> listings{ListFolders(way.root)};
    std::wstring folder = way.root;
    for (const std::wstring& name : way.names) {
        folder += name;
        listings.push_back(ListFolders(folder));
        folder += L'\\';
    }
    return listings;
}

}  // namespace

bool FolderTree::Attach(HWND dialog, int id, UINT openMessage, Waiting waiting) {
    dialog_ = dialog;
    openMessage_ = openMessage;
    waiting_ = std::move(waiting);
    known_.clear();
    read_.clear();
    if (!tree_.Attach(dialog, id)) return false;
    HIMAGELIST images = nullptr;
    FolderImage(false, &images);
    tree_.SetImages(images);
    tree_.OnExpand([this](TreeView::Node node) { return OpensAtOnce(node); });
    return true;
}

void FolderTree::OnSelect(std::function<void()> handler) {
    tree_.OnSelect([handler = std::move(handler)](TreeView::Node) { handler(); });
}

// A node is read outside the tree's own notification: reading may let messages run.
bool FolderTree::OpensAtOnce(TreeView::Node node) {
    if (read_.contains(node)) return true;
    PostMessageW(dialog_, openMessage_, 0, reinterpret_cast<LPARAM>(node));
    return false;
}

std::wstring FolderTree::FolderToOpen(LPARAM node) const {
    auto* const opened = reinterpret_cast<TreeView::Node>(node);
    return known_.contains(opened) ? PathOf(opened) : std::wstring();
}

DWORD FolderTree::ReadAndOpen(LPARAM node) {
    auto* const opened = reinterpret_cast<TreeView::Node>(node);
    const std::wstring folder = FolderToOpen(node);
    if (folder.empty()) return ERROR_SUCCESS;
    const auto listing =
        CallInBackground<FolderListing>([folder] { return ListFolders(folder); }, waiting_);
    if (!listing) return ERROR_CANCELLED;
    if (listing->error != ERROR_SUCCESS) return listing->error;
    Fill(opened, *listing);
    tree_.Expand(opened);
    return ERROR_SUCCESS;
}

DWORD FolderTree::Show(const std::wstring& folder) {
    const Way way = WayTo(folder);
    if (way.root.empty()) return ERROR_PATH_NOT_FOUND;
    const auto listings =
        CallInBackground<std::vector<FolderListing>>([way] { return ListWay(way); }, waiting_);
    if (!listings) return ERROR_CANCELLED;
    // A folder above that may not be listed does not stand in the way.
    if (listings->back().error != ERROR_SUCCESS) return listings->back().error;

    if (!EqualsIgnoreCase(Root(), way.root)) {
        tree_.Clear();
        known_.clear();
        read_.clear();
        const int image = ImageOf(way.root, FILE_ATTRIBUTE_DIRECTORY, SHGFI_USEFILEATTRIBUTES);
        known_.insert(tree_.Add(nullptr, {way.root, image, image, true}));
    }
    TreeView::Node node = tree_.Root();
    Fill(node, listings->front());
    for (size_t level = 0; level < way.names.size(); ++level) {
        tree_.Expand(node);
        TreeView::Node child = ChildNamed(node, way.names[level]);
        if (child == nullptr) {  // new or hidden
            tree_.SetExpandable(node, true);
            child = tree_.Add(node, FolderDesign(way.names[level], true));
            known_.insert(child);
            tree_.Expand(node);
        }
        node = child;
        Fill(node, (*listings)[level + 1]);
    }
    tree_.Expand(node);
    tree_.Select(node);
    return ERROR_SUCCESS;
}

void FolderTree::Fill(TreeView::Node node, const FolderListing& listing) {
    if (!read_.insert(node).second) return;
    for (const ListedFolder& folder : listing.folders) {
        known_.insert(tree_.Add(node, FolderDesign(folder.name, folder.mayHaveFolders)));
    }
    tree_.SetExpandable(node, !listing.folders.empty());
}

bool FolderTree::OpenSelected() {
    TreeView::Node const node = tree_.Selected();
    if (node == nullptr || tree_.IsExpanded(node) || !tree_.IsExpandable(node)) return false;
    if (OpensAtOnce(node)) tree_.Expand(node);
    return true;
}

bool FolderTree::Up() {
    TreeView::Node const parent = tree_.Parent(tree_.Selected());
    if (parent == nullptr) return false;
    tree_.Select(parent);
    return true;
}

std::wstring FolderTree::PathOf(TreeView::Node node) const {
    if (node == nullptr) return {};
    TreeView::Node const parent = tree_.Parent(node);
    if (parent == nullptr) return tree_.Text(node);
    const std::wstring above = PathOf(parent);
    return (above.ends_with(L'\\') ? above : above + L'\\') + tree_.Text(node);
}

TreeView::Node FolderTree::ChildNamed(TreeView::Node parent, const std::wstring& name) const {
    for (TreeView::Node child = tree_.FirstChild(parent); child != nullptr;
         child = tree_.NextSibling(child)) {
        if (EqualsIgnoreCase(tree_.Text(child), name)) return child;
    }
    return nullptr;
}

}  // namespace tessary
