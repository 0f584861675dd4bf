// A tree of texts of which one is selected.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <functional>
#include <string>
#include <utility>

#include "ui/form/control.h"

namespace tessary {

// Nodes go by the tree's own handles; null stands for no node.
class TreeView final : public Control {
  public:
    using Node = HTREEITEM;

    struct NodeDesign {
        std::wstring text;
        int image = 0;          // of the image list
        int selectedImage = 0;  // while it is selected
        bool expandable = false;
    };

    // The selection has moved, by the user or by Select.
    void OnSelect(std::function<void(Node)> handler) { select_ = std::move(handler); }
    // The user opens a node: false keeps it closed.
    void OnExpand(std::function<bool(Node)> handler) { expand_ = std::move(handler); }

    // The images stay the caller's.
    void SetImages(HIMAGELIST images);

    // Adds a node at the end of `parent`'s (null: the tree's root).
    Node Add(Node parent, const NodeDesign& design);
    void Clear() { Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT)); }

    Node Selected() const { return Next(TVGN_CARET, nullptr); }
    void Select(Node node);  // and scrolls it into view
    Node Root() const { return Next(TVGN_ROOT, nullptr); }
    Node Parent(Node node) const { return Next(TVGN_PARENT, node); }
    Node FirstChild(Node node) const { return Next(TVGN_CHILD, node); }
    Node NextSibling(Node node) const { return Next(TVGN_NEXT, node); }

    std::wstring Text(Node node) const;
    bool IsExpanded(Node node) const;
    // Opens a node without asking OnExpand.
    void Expand(Node node);
    bool IsExpandable(Node node) const;
    void SetExpandable(Node node, bool expandable);

  private:
    void OnAttached() override;
    std::optional<LRESULT> OnNotify(NMHDR& header) override;
    LRESULT Draw(NMTVCUSTOMDRAW& draw) const;
    Node Next(UINT relation, Node node) const {
        return reinterpret_cast<Node>(
            Send(TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(node)));
    }

    std::function<void(Node)> select_;
    std::function<bool(Node)> expand_;
};

}  // namespace tessary
