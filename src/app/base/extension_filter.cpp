#include "app/base/extension_filter.h"

#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

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
