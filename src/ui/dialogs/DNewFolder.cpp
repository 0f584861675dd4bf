#include "ui/dialogs/DNewFolder.h"

#include "app/base/file_name_rules.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "res/resource.h"

namespace tessary {
namespace {

std::wstring CreationErrorText(const std::wstring& folder, DWORD error) {
    switch (error) {
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return L"同じ名前のフォルダまたはファイルがあります。\r\n" + folder;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return L"ここにフォルダを作成する権限がありません。\r\n" + folder;
        default:
            return L"フォルダを作成できません。\r\n" + folder + L"\r\n\r\n" + WriteErrorText(error);
    }
}

}  // namespace

DNewFolder::DNewFolder() : Dialog(dialogNewFolder) {}

std::wstring DNewFolder::Make(HWND owner, const std::wstring& parent) {
    parent_ = parent.ends_with(L'\\') ? parent : parent + L'\\';
    made_.clear();
    ShowModal(owner);
    return made_;
}

void DNewFolder::Dialog_Load() {
    textName_.Attach(Handle(), newFolderName);
    textName_.SetText(L"新しいフォルダ");
}

void DNewFolder::Dialog_OK() {
    const std::wstring name(TrimSpaces(textName_.Text()));
    const std::wstring folder = parent_ + name;
    std::wstring problem;
    if (!IsFileName(name)) {
        problem =
            L"この名前は使えません。\r\n"
            LR"(次の文字と、末尾の . は使えません:  \ / : * ? " < > |)";
    } else if (!CreateDirectoryW(ExtendedPath(folder).c_str(), nullptr)) {
        problem = CreationErrorText(folder, LastWriteError(folder));
    } else {
        made_ = folder;
        Close(IDOK);
        return;
    }
    ShowMessageBox(problem, MB_ICONEXCLAMATION);
    SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(textName_.Handle()), TRUE);
}

}  // namespace tessary
