#include "ui/options/frmAbout.h"

#include <string>
#include <vector>

#include "app/base/message_box.h"
#include "library_versions.h"
#include "res/resource.h"
#include "ui/form/window.h"
#include "ui/options/used_libraries.h"

namespace tessary {
namespace {

constexpr int kIconSize = 48;  // pixels at 96 dpi

constexpr ListView::Column kColumns[] = {{.caption = L"名前", .width = 170},
                                         {.caption = L"バージョン", .width = 90},
                                         {.caption = L"ライセンス", .width = 150, .fills = true}};

}  // namespace

frmAbout::frmAbout() : Dialog(dialogAbout) {}

void frmAbout::Dialog_Load() {
    ShowIcon();
    SetLine(aboutName, std::wstring(kApplicationTitle));
    SetLine(aboutVersion, L"バージョン " TESSARY_VERSION);
    SetLine(aboutBuild, BuildText());
    libraries_.Attach(Handle(), aboutLibraries);
    licence_.Attach(Handle(), aboutLicence);
    libraries_.SetColumns(kColumns);
    std::vector<ListView::Row> rows;
    for (const UsedLibrary& library : UsedLibraries())
        rows.push_back({library.name, library.version, library.licence});
    libraries_.SetRows(std::move(rows));
    libraries_.OnSelect([this] { ShowLicence(); });
    libraries_.Select(0);
    SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(Handle(), IDOK)),
                 TRUE);
}

void frmAbout::ShowIcon() {
    icon_ = Metrics(Handle()).Icon(iconApplication, kIconSize);
    SendDlgItemMessageW(Handle(), aboutIcon, STM_SETICON, reinterpret_cast<WPARAM>(icon_.Get()), 0);
}

void frmAbout::ShowLicence() {
    const auto libraries = UsedLibraries();
    const int index = libraries_.Selected();
    if (index < 0 || index >= static_cast<int>(libraries.size())) return;
    licence_.SetText(libraries[static_cast<size_t>(index)].notice);
}

void frmAbout::SetLine(int id, const std::wstring& text) const {
    SetDlgItemTextW(Handle(), id, text.c_str());
}

}  // namespace tessary
