#include "ui/control/open_rules.h"

#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

constexpr int kCharacterCodes = 256;

}  // namespace

int SplitText(std::wstring_view text, int characterCode, std::vector<std::wstring>& pieces) {
    pieces.clear();
    if (characterCode >= kCharacterCodes) return 0;
    for (;;) {
        const size_t end = text.find(static_cast<wchar_t>(characterCode));
        pieces.emplace_back(text.substr(0, end));
        if (end == std::wstring_view::npos) return static_cast<int>(pieces.size());
        text.remove_prefix(end + 1);
    }
}

ChosenFiles FilesOfDialog(std::wstring_view fileName) {
    if (fileName.empty()) return {};
    std::vector<std::wstring> pieces;
    SplitText(fileName, 0, pieces);
    if (pieces.size() == 1) return {FolderOf(pieces[0]), pieces};
    ChosenFiles chosen{pieces[0], {}};
    if (!chosen.folder.ends_with(L'\\')) chosen.folder += L'\\';
    for (size_t piece = 1; piece < pieces.size(); ++piece) {
        chosen.paths.push_back(chosen.folder + pieces[piece]);
    }
    return chosen;
}

ExtensionFilter::ExtensionFilter(std::wstring_view extensions) {
    if (extensions.empty()) return;
    SplitText(ToUpper(extensions), L' ', upperExtensions_);
    for (std::wstring& extension : upperExtensions_) {
        if (extension.starts_with(L"*.")) extension.erase(0, 1);
        if (extension.starts_with(L'.')) extension.erase(0, 1);
    }
    const auto isAll = [](const std::wstring& extension) { return extension == L"*"; };
    if (std::any_of(upperExtensions_.begin(), upperExtensions_.end(), isAll)) {
        upperExtensions_.clear();
    }
}

bool ExtensionFilter::Wants(std::wstring_view fileName) const {
    if (upperExtensions_.empty()) return true;
    const std::wstring extension = UpperExtensionOf(fileName);
    return std::find(upperExtensions_.begin(), upperExtensions_.end(), extension) !=
           upperExtensions_.end();
}

}  // namespace tessary
