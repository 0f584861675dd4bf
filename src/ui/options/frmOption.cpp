#include "ui/options/frmOption.h"

#include <algorithm>
#include <utility>

#include "app/base/message_box.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/form/activity.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

constexpr int kRowHeight = 24;  // of the list of pages, in pixels at 96 dpi

std::wstring TextOf(HWND window) {
    wchar_t text[64]{};
    GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    return text;
}

// A plug-in that shows its settings window keeps this one behind it; some let it be clicked all the
// same. While plug-ins are being loaded there is nothing to press either.
bool IsBusy() {
    return PluginCallUnderWay() || IsReadUnderWay();
}

}  // namespace

frmOption::frmOption(Taker apply) : Dialog(dialogOption), apply_(std::move(apply)) {}

bool frmOption::Edit(HWND owner, int page) {
    page_ = std::clamp(page, kPluginPage, kKeyPage);
    return ShowModal(owner) == IDOK;
}

void frmOption::Dialog_Load() {
    before_ = options_ = CurrentOptions();
    AnchorControls();
    cmdApply_.Attach(Handle(), cmdApply);
    cmdApply_.OnClick([this] { cmdApply_Click(); });
    for (OptionPage* const page : all_)
        page->Load(Handle());

    pages_.Attach(Handle(), optionPages);
    SendMessageW(pages_.Handle(), TVM_SETITEMHEIGHT,
                 static_cast<WPARAM>(Metrics(Handle()).Scale(kRowHeight)), 0);
    for (int heading = optionPage_0; heading <= optionPage_5; ++heading)
        pages_.Add(nullptr, {.text = TextOf(GetDlgItem(Handle(), heading))});
    pages_.OnSelect([this](TreeView::Node chosen) {
        int page = 0;
        for (auto node = pages_.Root(); node != chosen; node = pages_.NextSibling(node)) {
            if (node == nullptr) return;
            ++page;
        }
        ShowPage(page);
    });
    TreeView::Node first = pages_.Root();
    for (int page = 0; page < page_; ++page)
        first = pages_.NextSibling(first);
    ShowAll();
    pages_.Select(first);
    ShowPage(page_);
}

void frmOption::AnchorControls() {
    Anchor(optionPages, kAnchorLeft | kAnchorHeight);
    Anchor(optionPageLine, kAnchorWidth | kAnchorTop);
    for (int i = 0; i < kPluginFolderCount; ++i) {
        Anchor(textSPIFolder_0 + i, kAnchorWidth | kAnchorTop);
        Anchor(cmdSPIFolder_0 + i, kAnchorRight | kAnchorTop);
    }
    Anchor(listSPI, kAnchorWidth | kAnchorHeight);
    Anchor(labelSPIError, kAnchorLeft | kAnchorBottom);
    Anchor(labelSPIEnds, kAnchorWidth | kAnchorBottom);
    Anchor(listSPIError, kAnchorWidth | kAnchorBottom);
    Anchor(listKeys, kAnchorWidth | kAnchorHeight);
    Anchor(textNewKey, kAnchorWidth | kAnchorBottom);
    Anchor(labelKeyUse, kAnchorWidth | kAnchorBottom);
    for (const int id : {labelNewKey, cmdDropKeys})
        Anchor(id, kAnchorLeft | kAnchorBottom);
    for (const int id : {cmdAssignKey, cmdUsualKeys, cmdAllUsualKeys})
        Anchor(id, kAnchorRight | kAnchorBottom);
    for (const int id : {cmdSPISetup, cmdSPIErrorClear, IDOK, IDCANCEL, cmdApply})
        Anchor(id, kAnchorRight | kAnchorBottom);
}

// The others are disabled too, or their mnemonics would still work.
void frmOption::ShowPage(int page) {
    page_ = page;
    int shown = -1;  // nothing of a page yet
    for (HWND control = GetWindow(Handle(), GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(control);
        if (id == IDOK) break;
        if (id >= optionPage_0 && id <= optionPage_5) shown = id - optionPage_0;
        if (shown < 0) continue;
        EnableWindow(control, shown == page);
        ShowWindow(control, shown == page ? SW_SHOWNA : SW_HIDE);
    }
    all_[static_cast<size_t>(page)]->ShowState();
}

void frmOption::ShowAll() {
    PluginsChanged();
    for (OptionPage* const page : all_)
        page->ShowValues();
    Changed();
}

// Asked only now and then, for it may look at folders of a network.
void frmOption::PluginsChanged() {
    isIncomplete_ = SusieCollection().IsIncomplete();
}

void frmOption::Changed() {
    all_[static_cast<size_t>(page_)]->ShowState();
    cmdApply_.SetEnabled(!(options_ == before_) || isIncomplete_);
}

void frmOption::cmdApply_Click() {
    if (IsBusy() || !AcceptsAll()) return;
    apply_(options_, Handle());
    if (Handle() == nullptr) return;  // the session has ended meanwhile
    before_ = options_ = CurrentOptions();
    ShowAll();
    ShowPage(page_);
}

// Else shows what is wrong.
bool frmOption::AcceptsAll() {
    for (size_t page = 0; page < all_.size(); ++page) {
        const std::wstring fault = all_[page]->Fault();
        if (fault.empty()) continue;
        ShowMessageBox(fault, MB_ICONEXCLAMATION);
        if (Handle() == nullptr) return false;  // the session has ended meanwhile
        TreeView::Node node = pages_.Root();
        for (size_t before = 0; before < page; ++before)
            node = pages_.NextSibling(node);
        pages_.Select(node);
        ShowPage(static_cast<int>(page));
        all_[page]->GoToFault();
        return false;
    }
    return true;
}

void frmOption::Dialog_OK() {
    if (!IsBusy() && AcceptsAll()) Close(IDOK);
}

void frmOption::Dialog_Cancel() {
    if (!IsBusy()) Close(IDCANCEL);
}

}  // namespace tessary
