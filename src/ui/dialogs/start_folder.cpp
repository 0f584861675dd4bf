#include "ui/dialogs/start_folder.h"

#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

std::wstring FirstChosenFolder(std::initializer_list<const std::wstring*> folders) {
    for (const std::wstring* const folder : folders) {
        if (!EqualsIgnoreCase(*folder, RemoveBackslash(AppFolder()))) return *folder;
    }
    return {};
}

}  // namespace tessary
