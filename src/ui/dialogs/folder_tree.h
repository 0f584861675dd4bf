// The tree of a drive's folders, which reads a folder when it is opened.
#pragma once

#include <windows.h>

#include <functional>
#include <set>
#include <string>

#include "ui/form/tree_view.h"

namespace tessary {

class FolderTree {
  public:
    // Asked while the tree waits for a slow drive and lets messages run: false gives up.
    using Waiting = std::function<bool()>;

    // Takes over the dialog's tree control. The tree posts `openMessage` to the dialog when the
    // user opens a node that has to be read first; the dialog then calls ReadAndOpen with its
    // `lParam`.
    bool Attach(HWND dialog, int id, UINT openMessage, Waiting waiting);

    // The selection has moved.
    void OnSelect(std::function<void()> handler);

    // Selects a folder, opening those on the way to it; the tree changes to its drive or share. The
    // system's error when it is none that can be read, ERROR_CANCELLED when given up: the tree is
    // then as it was.
    DWORD Show(const std::wstring& folder);

    // See Attach: the folder, empty when the tree has changed since; and reading it, with the
    // system's error as above.
    std::wstring FolderToOpen(LPARAM node) const;
    DWORD ReadAndOpen(LPARAM node);

    // Opens the selected folder if it is closed; false when there is nothing to open.
    bool OpenSelected();

    // Selects the folder above; false at the root.
    bool Up();

    // The drive's root (with a trailing backslash) or a folder (without); empty: nothing is shown.
    std::wstring Selected() const { return PathOf(tree_.Selected()); }
    std::wstring Root() const { return PathOf(tree_.Root()); }
    std::wstring PathOf(TreeView::Node node) const;

    TreeView& Tree() { return tree_; }

  private:
    TreeView::Node ChildNamed(TreeView::Node parent, const std::wstring& name) const;
    void Fill(TreeView::Node node, const struct FolderListing& listing);
    bool OpensAtOnce(TreeView::Node node);

    HWND dialog_ = nullptr;
    UINT openMessage_ = 0;
    Waiting waiting_;
    TreeView tree_;
    std::set<TreeView::Node> known_;  // all nodes
    std::set<TreeView::Node> read_;   // those whose folders are in the tree
};

}  // namespace tessary
