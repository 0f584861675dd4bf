// The filter text of the open dialog.
#include <algorithm>
#include <set>

#include "plugin/CollectionSusie.h"

namespace tessary {
namespace {

// Text as it may stand between two `|`.
std::wstring Entry(std::wstring text) {
    std::replace(text.begin(), text.end(), L'|', L' ');
    return text;
}

}  // namespace

std::wstring CollectionSusie::GetCommonDialogString() const {
    std::wstring all = L"*.BMP;";
    std::wstring entries;
    std::set<std::wstring> known{L"*.BMP"};
    for (const auto& member : order_.members) {
        if (member->DllName().empty()) continue;
        for (const std::wstring& one : member->Patterns()) {
            const std::wstring pattern = Entry(one);
            if (known.insert(pattern).second) all += pattern + L';';
        }
        const std::wstring patterns = Entry(member->FileType(0));
        const std::wstring& product = member->ProductName();
        const std::wstring name = product.empty() ? NameOf(member->DllName()) : product;
        entries.append(Entry(name)).append(L"(").append(patterns);
        entries.append(L")|").append(patterns).append(L"|");
    }
    if (all.back() == L';' && known.size() > 1) all.pop_back();
    return L"すべてのファイル(*.*)|*.*|すべての対応ファイル|" + all +
           L"|BMPファイル(*.BMP)|*.BMP|" + entries;
}

}  // namespace tessary
