#include "ui/form/dialog.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "app/base/call_user.h"
#include "app/base/error.h"
#include "app/base/task_modal.h"
#include "ui/form/control.h"
#include "ui/form/dialog_template.h"
#include "ui/form/dress.h"
#include "ui/form/metrics.h"
#include "ui/form/screen.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

// Where a dialog was last.
struct LastPlace {
    RECT window;
    int dpi;
};

std::map<int, LastPlace>& LastPlaces() {
    static std::map<int, LastPlace> places;  // by the template's number
    return places;
}

std::vector<DWORD> TemplateInMessageFont(int resource, HWND owner) {
    const Metrics metrics(owner);
    const UniqueFont font = metrics.MessageFont();
    LOGFONTW description{};
    GetObjectW(font.Get(), sizeof(description), &description);
    return LoadDialogTemplate(resource, description, metrics.Dpi());
}

// The system's own scaling of dialogs is there on newer versions only; ours does it on all.
void RefuseSystemScaling(HWND dialog) {
    using Call = BOOL(WINAPI*)(HWND, int, int);
    static const auto setBehavior = reinterpret_cast<Call>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetDialogDpiChangeBehavior")));
    constexpr int kDisableAll = 1;
    if (setBehavior != nullptr) setBehavior(dialog, kDisableAll, kDisableAll);
}

bool IsSizeable(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_THICKFRAME) != 0;
}

}  // namespace

Dialog::~Dialog() {
    if (handle_ == nullptr) return;
    SetWindowLongPtrW(handle_, DWLP_USER, 0);
    DestroyWindow(handle_);
}

int Dialog::ShowModal(HWND owner) {
    if (handle_ != nullptr) return IDCANCEL;
    const std::vector<DWORD> block = TemplateInMessageFont(resource_, owner);
    if (block.empty()) return IDCANCEL;
    modal_ = true;
    const TaskModal others(owner);
    const UserCall call(owner);
    // An owner that is disabled could not become active again behind the dialog.
    const bool wasDisabled = owner != nullptr && !IsWindowEnabled(owner);
    if (wasDisabled) EnableWindow(owner, TRUE);
    const INT_PTR result = DialogBoxIndirectParamW(
        ProgramInstance(), reinterpret_cast<const DLGTEMPLATE*>(block.data()), owner, Procedure,
        reinterpret_cast<LPARAM>(this));
    if (wasDisabled) EnableWindow(owner, FALSE);
    return result > 0 ? static_cast<int>(result) : IDCANCEL;
}

bool Dialog::Show(HWND owner) {
    if (handle_ != nullptr) return true;
    const std::vector<DWORD> block = TemplateInMessageFont(resource_, owner);
    if (block.empty()) return false;
    modal_ = false;
    CreateDialogIndirectParamW(ProgramInstance(),
                               reinterpret_cast<const DLGTEMPLATE*>(block.data()), owner, Procedure,
                               reinterpret_cast<LPARAM>(this));
    if (handle_ == nullptr) return false;
    filter_.emplace([this](MSG& message) {
        return handle_ != nullptr && IsDialogMessageW(handle_, &message) != FALSE;
    });
    // Not ShowWindow: what a shortcut says of the window's state goes to the first window that is
    // shown by that, and is meant for the main window.
    SetWindowPos(handle_, HWND_TOP, 0, 0, 0, 0, SWP_SHOWWINDOW | SWP_NOMOVE | SWP_NOSIZE);
    return true;
}

void Dialog::Close(int result) {
    if (handle_ == nullptr) return;
    if (modal_) {
        EndDialog(handle_, result);
    } else {
        DestroyWindow(handle_);
    }
}

bool Dialog::Load() {
    RefuseSystemScaling(handle_);
    dpi_ = Metrics(handle_).Dpi();
    font_.Reset();
    // The owner's icon: the program's, where the system would show one of its own.
    SendMessageW(handle_, WM_SETICON, ICON_SMALL,
                 SendMessageW(GetWindow(handle_, GW_OWNER), WM_GETICON, ICON_SMALL, 0));
    anchors_.Take(handle_);
    const bool loaded = Trapped(false, [this] {
        Dialog_Load();
        return true;
    });
    if (!loaded || handle_ == nullptr) return loaded;
    anchors_.Take(handle_);  // with the controls that Dialog_Load has made
    Dress(handle_);
    PlaceWindow();
    return loaded;
}

// Where it was last, else over the middle of its owner; whole on the screen in any case.
void Dialog::PlaceWindow() {
    RECT window{};
    GetWindowRect(handle_, &window);
    SIZE size = SizeOf(window);
    const auto last = LastPlaces().find(resource_);
    if (last != LastPlaces().end()) {
        window = last->second.window;
        if (IsSizeable(handle_)) {
            size = {MulDiv(SizeOf(window).cx, dpi_, last->second.dpi),
                    MulDiv(SizeOf(window).cy, dpi_, last->second.dpi)};
        }
    } else {
        RECT around{};
        const HWND owner = GetWindow(handle_, GW_OWNER);
        const bool overOwner = owner != nullptr && IsWindowVisible(owner) && !IsIconic(owner);
        if (!overOwner || !GetWindowRect(owner, &around)) around = ScreenOf(window).rcWork;
        window.left = (around.left + around.right - size.cx) / 2;
        window.top = (around.top + around.bottom - size.cy) / 2;
    }
    const RECT work =
        ScreenOf({window.left, window.top, window.left + size.cx, window.top + size.cy}).rcWork;
    const LONG left = std::max(std::min(window.left, work.right - size.cx), work.left);
    const LONG top = std::max(std::min(window.top, work.bottom - size.cy), work.top);
    SetWindowPos(handle_, nullptr, left, top, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

void Dialog::RememberPlace() const {
    RECT window{};
    if (IsIconic(handle_) || IsZoomed(handle_) || !GetWindowRect(handle_, &window)) return;
    LastPlaces()[resource_] = {window, dpi_};
}

void Dialog::ChangeResolution(int newDpi, const RECT& suggested) {
    LOGFONTW description{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(handle_, WM_GETFONT, 0, 0)),
               sizeof(description), &description);
    description.lfHeight = MulDiv(description.lfHeight, newDpi, dpi_);
    description.lfWidth = 0;
    UniqueFont font(CreateFontIndirectW(&description));
    const auto setFont = [&](HWND window) {
        SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font.Get()), FALSE);
    };
    setFont(handle_);
    for (HWND control = GetWindow(handle_, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        setFont(control);
    }
    font_ = std::move(font);
    anchors_.Scale(newDpi, dpi_);
    dpi_ = newDpi;
    SetWindowPos(handle_, nullptr, suggested.left, suggested.top, SizeOf(suggested).cx,
                 SizeOf(suggested).cy, SWP_NOZORDER | SWP_NOACTIVATE);
    anchors_.Apply(handle_);
    InvalidateRect(handle_, nullptr, TRUE);
}

SIZE Dialog::SmallestSize() const {
    RECT window{};
    RECT client{};
    GetWindowRect(handle_, &window);
    GetClientRect(handle_, &client);
    const SIZE base = anchors_.BaseSize();
    return {SizeOf(window).cx - client.right + base.cx,
            SizeOf(window).cy - client.bottom + base.cy};
}

std::optional<LRESULT> Dialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            if (HIWORD(wParam) != BN_CLICKED) return std::nullopt;
            if (LOWORD(wParam) == IDOK) Dialog_OK();
            if (LOWORD(wParam) == IDCANCEL) Dialog_Cancel();
            return 0;
        case WM_CLOSE:
            Dialog_Cancel();
            return 0;
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) anchors_.Apply(handle_);
            return 0;
        case WM_GETMINMAXINFO: {
            if (!IsSizeable(handle_)) return std::nullopt;
            const SIZE smallest = SmallestSize();
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {smallest.cx, smallest.cy};
            return 0;
        }
        case WM_SYSCOLORCHANGE:
            TellColorChange(handle_);
            return std::nullopt;
        case WM_DPICHANGED:
            ChangeResolution(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
            return 0;
        case WM_DESTROY:
            RememberPlace();
            Dialog_Unload();
            return 0;
        default:
            return std::nullopt;
    }
}

INT_PTR CALLBACK Dialog::Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* const created = reinterpret_cast<Dialog*>(lParam);
        created->handle_ = handle;
        SetWindowLongPtrW(handle, DWLP_USER, lParam);
        if (!created->Load()) created->Close(IDCANCEL);
        return !IsChild(handle, GetFocus());  // the first control gets the focus unless one has it
    }
    auto* const dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(handle, DWLP_USER));
    if (dialog == nullptr) return FALSE;
    if (const auto look = AnswerForLook(handle, message, wParam, lParam)) {
        if (AsksForBrush(message)) return *look;
        SetWindowLongPtrW(handle, DWLP_MSGRESULT, *look);
        return TRUE;
    }
    if (message == WM_NCDESTROY) {
        SetWindowLongPtrW(handle, DWLP_USER, 0);
        dialog->handle_ = nullptr;
        return FALSE;
    }
    const std::optional<LRESULT> answer = Trapped(std::optional<LRESULT>(), [&] {
        const auto reflected = Control::Reflect(message, wParam, lParam);
        const bool closing =
            message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL);
        return reflected && !closing ? reflected : dialog->OnMessage(message, wParam, lParam);
    });
    if (!answer) return FALSE;
    SetWindowLongPtrW(handle, DWLP_MSGRESULT, *answer);
    return TRUE;
}

}  // namespace tessary
