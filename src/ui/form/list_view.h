// A report: rows of texts under column headings, of which one may be selected, or several.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ui/form/control.h"

namespace tessary {

// The control asks for the texts that it draws, so any number of rows is filled in at once; its
// template needs LVS_REPORT | LVS_OWNERDATA, and LVS_SINGLESEL unless several may be selected.
// Indexes count from 0; -1 stands for none.
class ListView final : public Control {
  public:
    struct Column {
        const wchar_t* caption;
        int width;  // pixels at 96 dpi
        bool isNumber = false;
        bool fills = false;  // takes the room that the others leave, but no less than its width
    };
    using Row = std::vector<std::wstring>;  // a text for each column; missing ones are empty

    void SetColumns(std::span<const Column> columns);

    // Replaces all rows and takes the selection away.
    void SetRows(std::vector<Row> rows);
    // Puts rows behind the others; what is selected and in view stays.
    void AddRows(std::vector<Row> rows);

    int Selected() const {
        return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
    }
    void Select(int index);  // and scrolls the row into view

    // Of a list of which several may be selected.
    std::vector<int> AllSelected() const;
    void SelectAll();

    // The selection has moved, by the user or by Select; a double click on a row.
    void OnSelect(std::function<void()> handler) { select_ = std::move(handler); }
    void OnDoubleClick(std::function<void()> handler) { doubleClick_ = std::move(handler); }

  private:
    void OnAttached() override;
    std::optional<LRESULT> OnNotify(NMHDR& header) override;
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void GiveText(LVITEMW& item) const;
    LRESULT FindRow(const NMLVFINDITEMW& wanted) const;
    void LayOutColumns();
    LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;
    void DrawRow(HDC context, int index, bool isFocused) const;

    std::vector<Row> rows_;
    std::vector<Column> columns_;
    std::function<void()> select_;
    std::function<void()> doubleClick_;
};

}  // namespace tessary
