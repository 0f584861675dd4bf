#include "ui/dialogs/DRename.h"

#include "app/base/file_name_rules.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "res/resource.h"

namespace tessary {
namespace {

constexpr wchar_t kForbidden[] =
    L"この名前は使えません。\r\n"
    LR"(次の文字と、末尾の . は使えません:  \ / : * ? " < > |)";

std::wstring ProblemOf(const std::wstring& name) {
    if (name.empty()) return L"名前を入力してください。";
    if (NamesDevice(name)) return L"この名前は Windows が使うため、付けられません。";
    return IsFileName(name) ? std::wstring() : kForbidden;
}

// Another kind of file is seldom meant.
bool MayChangeExtension(const std::wstring& name, const std::wstring& newName) {
    if (UpperExtensionOf(name) == UpperExtensionOf(newName)) return true;
    return ShowMessageBox(
               L"拡張子を変えると、ファイルを開けなくなることがあります。\r\n変えますか？",
               MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

}  // namespace

DRename::DRename() : Dialog(dialogRename) {}

bool DRename::Ask(HWND owner, const std::wstring& name, const Accept& accept) {
    name_ = name;
    accept_ = &accept;
    return ShowModal(owner) == IDOK;
}

void DRename::Dialog_Load() {
    textName_.Attach(Handle(), renameName);
    textName_.SetText(name_);
    SendMessageW(textName_.Handle(), EM_SETLIMITTEXT, 255, 0);
    const size_t dot = name_.rfind(L'.');
    const size_t stem = dot == std::wstring::npos || dot == 0 ? name_.size() : dot;
    textName_.SetFocus();
    SendMessageW(textName_.Handle(), EM_SETSEL, 0, static_cast<LPARAM>(stem));
}

void DRename::Dialog_OK() {
    const std::wstring name(TrimSpaces(textName_.Text()));
    if (name == name_) return Close(IDCANCEL);
    std::wstring problem = ProblemOf(name);
    if (problem.empty()) {
        if (!MayChangeExtension(name_, name)) return textName_.SetFocus();
        problem = (*accept_)(name);
        if (problem.empty()) return Close(IDOK);
    }
    ShowMessageBox(problem, MB_ICONEXCLAMATION);
    SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(textName_.Handle()), TRUE);
}

}  // namespace tessary
