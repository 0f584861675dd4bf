// The files of a conversion that the user will want to look at.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "convert/file_report.h"
#include "ui/form/list_view.h"

namespace tessary {

// Files that have failed, are damaged, were skipped or got another name, each with the reason.
class ProblemList {
  public:
    // Takes the dialog's list over. Ctrl+A selects all, Ctrl+C copies what is selected, or all when
    // nothing is; a double click shows the file in its folder.
    void Attach(HWND dialog, int id);

    // What is not remarkable is passed over.
    void Add(const FileReport& report);
    void Clear();
    size_t Count() const { return reports_.size(); }

    // Brings the list on the screen up to date: what is new stands behind the rest.
    void Show();
    // The same, with one kind behind the other. Takes the selection away.
    void ShowByKind();
    void SetVisible(bool visible);
    void SetFocus() const { list_.SetFocus(); }
    bool HasFocus() const { return list_.HasFocus(); }

    // Shows the selected file in its folder; false when none is selected.
    bool ShowSelectedInFolder() const;

  private:
    void Copy() const;

    ListView list_;
    std::vector<FileReport> reports_;
    size_t shown_ = 0;  // how many of them are on the screen
};

}  // namespace tessary
