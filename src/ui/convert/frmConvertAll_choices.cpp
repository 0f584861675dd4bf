// What the converter's window lets choose for all files: formats, names that are in use, and where
// to.
#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "app/settings/saver_format.h"
#include "res/resource.h"
#include "ui/convert/frmConvertAll.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/dialogs/start_folder.h"

namespace tessary {
namespace {

// In the order of the values of OnConflict.
constexpr const wchar_t* kConflicts[] = {L"別名で保存する", L"変換しない（スキップ）",
                                         L"上書きする", L"そのつど確認する"};

}  // namespace

void frmConvertAll::FillFormats() {
    ConvertSettings& settings = Values().convert;
    const auto fill = [this](ComboBox& list, int id, const auto& entries, int32_t& value) {
        list.Attach(Handle(), id);
        for (const wchar_t* const entry : entries)
            list.Add(entry);
        list.OnSelect([&list, &value] { value = list.Selected(); });
    };
    const std::vector<const wchar_t*> formats = SaverFormatNames();
    fill(combConvertIndexcolor_, combConvertIndexcolor, formats, settings.saveType1);
    fill(combConvertFullcolor_, combConvertFullcolor, formats, settings.saveType2);
    fill(combConvertOnConflict_, combConvertOnConflict, kConflicts, settings.onConflict);
    const auto check = [this](Button& box, int id, bool& value) {
        box.Attach(Handle(), id);
        box.OnClick([&box, &value] { value = box.IsChecked(); });
    };
    check(checkConvertKeepFolders_, checkConvertKeepFolders, settings.keepFolders);
    check(checkConvertSkipDamaged_, checkConvertSkipDamaged, settings.skipDamaged);
}

void frmConvertAll::ShowChoices() {
    const ConvertSettings& settings = Values().convert;
    combConvertIndexcolor_.MarkSelected(settings.saveType1);
    combConvertFullcolor_.MarkSelected(settings.saveType2);
    combConvertOnConflict_.MarkSelected(settings.onConflict);
    checkConvertKeepFolders_.SetChecked(settings.keepFolders);
    checkConvertSkipDamaged_.SetChecked(settings.skipDamaged);
}

void frmConvertAll::cmdConvertFolder_Click() {
    const std::wstring typed = TypedFolder();
    const std::wstring folder =
        BrowseForFolder(Handle(), L"画像ファイルの保存フォルダ",
                        L"変換した画像を保存するフォルダを指定してください。",
                        typed.empty() ? FirstChosenFolder({&Values().convert.savePath}) : typed);
    if (folder.empty() || Handle() == nullptr) return;
    textConvertFolder_.SetText(folder);
}

// The folder as a full path with a trailing backslash. Quotation marks stand around what other
// programs copy as a path.
std::wstring frmConvertAll::TypedFolder() const {
    std::wstring folder = textConvertFolder_.Text();
    std::erase(folder, L'"');
    folder = TrimSpaces(folder);
    if (folder.empty()) return {};
    const bool isDrive = folder.size() == 2 && folder[1] == L':';
    if (!folder.ends_with(L'\\') && (isDrive || !folder.ends_with(L'/'))) folder += L'\\';
    return FullPathOf(folder);
}

// For the next time, also when nothing has been converted into it.
void frmConvertAll::RememberFolder() {
    const std::wstring folder = TypedFolder();
    if (!folder.empty() && folder.find_first_of(L"?*") == folder.npos) {
        Values().convert.savePath = folder;
    }
}

void frmConvertAll::Command3_Click() {
    if (!showOptions_) return;
    showOptions_(Handle());
    if (Handle() == nullptr) return;  // the session has ended meanwhile
    ShowChoices();
}

}  // namespace tessary
