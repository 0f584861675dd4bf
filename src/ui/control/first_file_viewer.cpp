#include "ui/control/first_file_viewer.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/show/picture_text.h"
#include "ui/form/busy_pointer.h"

namespace tessary {

bool FirstFileViewer::SetFileList(std::span<const std::wstring> files) {
    const auto first = std::find_if(files.begin(), files.end(),
                                    [](const std::wstring& file) { return !file.empty(); });
    if (first == files.end()) return false;
    {
        Values().pictureLoading = true;
        const BusyPointer busy;
        Trapped([&] { Show(*first); });
        Values().pictureLoading = false;
    }
    // The window was closed during the load: now nothing keeps it open.
    if (Values().quitRequested) window_.Unload();
    return true;
}

void FirstFileViewer::Show(const std::wstring& path) {
    const std::wstring name = FileNameOf(path);
    window_.SetPanelText(kShownFilePanel, kTagLoading + name);
    const ShownFile shown = ShowFile(path, window_);
    if (IsPictureKind(shown.kind)) {
        window_.SetPictureSource({name, shown.pluginName});
        window_.SetPanelText(kShownFilePanel, kTagShown + name + PictureInfoTail());
    } else {
        window_.SetPanelText(kShownFilePanel, KindTag(shown.kind) + name);
    }
}

}  // namespace tessary
