#include "ui/dialogs/frmSaveOption.h"

#include <algorithm>
#include <string>

#include "res/resource.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

// Lengths are in units of the dialog.
constexpr int kLeft = 15;  // of the panel's controls
constexpr int kFirstTop = 18;
constexpr int kBottom = 94;
constexpr int kCheckHeight = 11;
constexpr int kLabelHeight = 9;

}  // namespace

int16_t frmSaveOption::Field::Value() const {
    if (option.kind == SaverOption::Kind::kLevel) {
        return static_cast<int16_t>(slider.Position() * option.step);
    }
    if (option.kind == SaverOption::Kind::kSwitch) return buttons.front().IsChecked() ? 1 : 0;
    const auto chosen =
        std::ranges::find_if(buttons, [](const Button& button) { return button.IsChecked(); });
    return static_cast<int16_t>(chosen == buttons.end() ? 0 : chosen - buttons.begin());
}

void frmSaveOption::Field::Show(int16_t shown) {
    switch (option.kind) {
        case SaverOption::Kind::kSwitch:
            return buttons.front().SetChecked(shown != 0);
        case SaverOption::Kind::kLevel:
            slider.SetPosition(shown / option.step);
            return value.SetText(std::to_wstring(Value()));
        case SaverOption::Kind::kChoice:
            break;
    }
    // Each of them is told: the tab key stops at those that were not told otherwise.
    const auto chosen =
        static_cast<size_t>(shown) < buttons.size() ? static_cast<size_t>(shown) : 0;
    for (size_t i = 0; i < buttons.size(); ++i)
        buttons[i].SetChecked(i == chosen);
}

frmSaveOption::frmSaveOption() : Dialog(dialogSaveOption) {}

bool frmSaveOption::Edit(HWND owner, const SaverFormat& format, saving::SaveOptions& options) {
    format_ = &format;
    options_ = &options;
    return ShowModal(owner) == IDOK;
}

void frmSaveOption::Dialog_Load() {
    fields_.clear();
    MakePanel();
    for (Field& field : fields_)
        field.Show(field.option.ValueIn(*options_));
    MakeRoom();
    ShowUse();
    FocusFirstControl();
}

void frmSaveOption::MakePanel() {
    top_ = kFirstTop;
    nextId_ = pictureOptionPanel_0 + format_->page * kPictureOptionPanelIds;
    last_ = nullptr;
    Make(L"BUTTON", format_->name, BS_GROUPBOX, 7, 5, 206, 90);
    for (const SaverOption& option : format_->options) {
        if (option.kind == SaverOption::Kind::kChoice) MakeChoice(fields_.emplace_back(option));
        if (option.kind == SaverOption::Kind::kLevel) MakeLevel(fields_.emplace_back(option));
    }
    for (const SaverOption& option : format_->options) {
        if (option.kind == SaverOption::Kind::kSwitch) MakeSwitch(fields_.emplace_back(option));
    }
    for (const SaverOption& option : SharedSaverOptions())
        MakeSwitch(fields_.emplace_back(option));
}

void frmSaveOption::MakeRoom() const {
    if (top_ <= kBottom) return;
    RECT more{0, 0, 0, top_ - kBottom};
    MapDialogRect(Handle(), &more);
    // First: the controls are put in their places for it.
    RECT frame{};
    GetWindowRect(Handle(), &frame);
    SetWindowPos(Handle(), nullptr, 0, 0, frame.right - frame.left,
                 frame.bottom - frame.top + more.bottom, SWP_NOMOVE | SWP_NOZORDER);
    const int group = pictureOptionPanel_0 + format_->page * kPictureOptionPanelIds;
    for (const int id : {group, IDOK, IDCANCEL}) {
        const HWND control = GetDlgItem(Handle(), id);
        RECT area{};
        GetWindowRect(control, &area);
        MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&area), 2);
        (id == group ? area.bottom : area.top) += more.bottom;
        if (id != group) area.bottom += more.bottom;
        SetWindowPos(control, nullptr, area.left, area.top, area.right - area.left,
                     area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}

void frmSaveOption::MakeChoice(Field& field) {
    Make(L"BUTTON", field.option.caption, BS_GROUPBOX, kLeft, top_, 190, 36);
    int left = kLeft + 10;
    for (const SaverChoice& choice : field.option.choices) {
        const DWORD first = field.buttons.empty() ? WS_GROUP | WS_TABSTOP : 0;
        MakeButton(field, choice.caption, BS_AUTORADIOBUTTON | first, left, top_ + 15, 70)
            .OnClick([this] { ShowUse(); });
        left += 80;
    }
    top_ += 46;
}

void frmSaveOption::MakeLevel(Field& field) {
    const SaverOption& option = field.option;
    Make(L"STATIC", option.caption, SS_LEFT | WS_GROUP, kLeft, top_, 100, kLabelHeight);
    const int slider = Make(TRACKBAR_CLASSW, L"", TBS_HORZ | TBS_AUTOTICKS | WS_TABSTOP, kLeft - 4,
                            top_ + 10, 172, 18);
    const int value =
        Make(L"STATIC", L"", SS_RIGHT | SS_NOPREFIX, 184, top_ + 13, 20, kLabelHeight);
    Make(L"STATIC", option.lowCaption, SS_LEFT, kLeft, top_ + 29, 80, kLabelHeight);
    Make(L"STATIC", option.highCaption, SS_RIGHT, 99, top_ + 29, 80, kLabelHeight);
    field.slider.Attach(Handle(), slider);
    field.slider.SetRange(0, option.most / option.step);
    field.value.Attach(Handle(), value);
    field.slider.OnChange([&field] { field.Show(field.Value()); });
    top_ += 45;
}

void frmSaveOption::MakeSwitch(Field& field) {
    const bool isFirst =
        field.option.key ==
        std::ranges::find(format_->options, SaverOption::Kind::kSwitch, &SaverOption::kind)->key;
    MakeButton(field, field.option.caption, BS_AUTOCHECKBOX | WS_TABSTOP | (isFirst ? WS_GROUP : 0),
               kLeft, top_, 190);
    top_ += 14;
}

int frmSaveOption::Make(const wchar_t* className, const wchar_t* caption, DWORD style, int left,
                        int top, int width, int height) {
    RECT area{left, top, left + width, top + height};
    MapDialogRect(Handle(), &area);
    const int id = nextId_++;
    const HWND control = CreateWindowExW(
        WS_EX_NOPARENTNOTIFY, className, caption, WS_CHILD | WS_VISIBLE | style, area.left,
        area.top, area.right - area.left, area.bottom - area.top, Handle(),
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ProgramInstance(), nullptr);
    SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(Handle(), WM_GETFONT, 0, 0)),
                 FALSE);
    SetWindowPos(control, last_ == nullptr ? HWND_TOP : last_, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    last_ = control;
    return id;
}

Button& frmSaveOption::MakeButton(Field& field, const wchar_t* caption, DWORD style, int left,
                                  int top, int width) {
    const int id = Make(L"BUTTON", caption, style, left, top, width, kCheckHeight);
    Button& button = field.buttons.emplace_back();
    button.Attach(Handle(), id);
    return button;
}

// What was chosen for the first choice stays.
void frmSaveOption::ShowUse() {
    const bool isFirst = std::ranges::none_of(fields_, [](const Field& field) {
        return field.option.kind == SaverOption::Kind::kChoice && field.Value() != 0;
    });
    for (Field& field : fields_) {
        if (field.option.isForFirstChoice) field.buttons.front().SetEnabled(isFirst);
    }
}

void frmSaveOption::FocusFirstControl() const {
    if (fields_.empty()) return;
    const Field& first = fields_.front();
    if (first.option.kind == SaverOption::Kind::kLevel) return first.slider.SetFocus();
    const auto chosen = first.option.kind == SaverOption::Kind::kChoice ? first.Value() : 0;
    first.buttons[static_cast<size_t>(chosen)].SetFocus();
}

void frmSaveOption::Dialog_OK() {
    for (const Field& field : fields_)
        field.option.in(*options_) = field.Value();
    Close(IDOK);
}

}  // namespace tessary
