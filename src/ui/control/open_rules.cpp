#include "ui/control/open_rules.h"

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

ChosenFiles FilesOfDialog(std::wstring_view fileName) {
    if (fileName.empty()) return {};
    std::vector<std::wstring> pieces;
    SplitText(fileName, 0, pieces);
    if (pieces.size() == 1) return {FolderOf(pieces[0]), pieces};
    ChosenFiles chosen{pieces[0], {}};
    if (!chosen.folder.ends_with(L'\\')) chosen.folder += L'\\';
    // From the results of a search, or a library, files may come with folders of their own.
    for (size_t piece = 1; piece < pieces.size(); ++piece) {
        const bool isWhole = !FolderOf(pieces[piece]).empty();
        chosen.paths.push_back(isWhole ? pieces[piece] : chosen.folder + pieces[piece]);
    }
    return chosen;
}

}  // namespace tessary
