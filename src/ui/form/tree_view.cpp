#include "ui/form/tree_view.h"

#include "ui/form/appearance.h"

namespace tessary {

void TreeView::OnAttached() {
    Send(TVM_SETEXTENDEDSTYLE, TVS_EX_DOUBLEBUFFER, TVS_EX_DOUBLEBUFFER);
}

void TreeView::SetImages(HIMAGELIST images) {
    Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
}

TreeView::Node TreeView::Add(Node parent, const NodeDesign& design) {
    TVINSERTSTRUCTW insert{};
    insert.hParent = parent != nullptr ? parent : TVI_ROOT;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_CHILDREN;
    insert.item.pszText = const_cast<wchar_t*>(design.text.c_str());  // only read
    insert.item.iImage = design.image;
    insert.item.iSelectedImage = design.selectedImage;
    insert.item.cChildren = design.expandable ? 1 : 0;
    return reinterpret_cast<Node>(Send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void TreeView::Select(Node node) {
    Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(node));
    Send(TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(node));
}

std::wstring TreeView::Text(Node node) const {
    wchar_t text[MAX_PATH + 1] = {};  // names of files are no longer
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_HANDLE;
    item.hItem = node;
    item.pszText = text;
    item.cchTextMax = MAX_PATH + 1;
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return item.pszText;
}

bool TreeView::IsExpanded(Node node) const {
    return (Send(TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(node), TVIS_EXPANDED) &
            TVIS_EXPANDED) != 0;
}

void TreeView::Expand(Node node) {
    // From its second time on the tree opens a node without a notification; the first time it asks.
    const auto asks = std::exchange(expand_, {});
    Send(TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(node));
    expand_ = asks;
}

bool TreeView::IsExpandable(Node node) const {
    TVITEMW item{};
    item.mask = TVIF_CHILDREN | TVIF_HANDLE;
    item.hItem = node;
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    return item.cChildren != 0;
}

void TreeView::SetExpandable(Node node, bool expandable) {
    TVITEMW item{};
    item.mask = TVIF_CHILDREN | TVIF_HANDLE;
    item.hItem = node;
    item.cChildren = expandable ? 1 : 0;
    Send(TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

std::optional<LRESULT> TreeView::OnNotify(NMHDR& header) {
    const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
    switch (header.code) {
        case TVN_SELCHANGEDW:
            if (select_) select_(change.itemNew.hItem);
            return 0;
        case TVN_ITEMEXPANDINGW:
            if ((change.action & TVE_EXPAND) == 0 || !expand_) return FALSE;
            return expand_(change.itemNew.hItem) ? FALSE : TRUE;
        case NM_CUSTOMDRAW:
            if (!IsDark()) return std::nullopt;
            return Draw(reinterpret_cast<NMTVCUSTOMDRAW&>(header));
        default:
            return std::nullopt;
    }
}

// A selected entry would be light where the tree has not the focus.
LRESULT TreeView::Draw(NMTVCUSTOMDRAW& draw) const {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    const bool isSelected = (draw.nmcd.uItemState & CDIS_SELECTED) != 0;
    draw.clrText = isSelected ? kDark.highlightText : kDark.text;
    draw.clrTextBk = !isSelected ? kDark.field : HasFocus() ? kDark.highlight : kDark.hot;
    return CDRF_DODEFAULT;
}

}  // namespace tessary
