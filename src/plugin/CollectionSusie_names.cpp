// What a plug-in's file is called.
#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/CollectionSusie.h"

namespace tessary {
namespace {

// The last `depth` folders of a path, joined as they are there; all of them when it has fewer.
std::wstring_view LastFolders(std::wstring_view path, int depth) {
    const size_t end = path.rfind(L'\\');
    size_t begin = end;
    for (int i = 0; i < depth && begin != path.npos && begin > 0; ++i)
        begin = path.rfind(L'\\', begin - 1);
    if (end == path.npos) return {};
    begin = begin == path.npos || begin == 0 ? 0 : begin + 1;
    return path.substr(begin, end - begin);
}

}  // namespace

std::wstring CollectionSusie::NameOf(const std::wstring& path) const {
    std::wstring name = FileNameOf(path);
    std::vector<std::wstring_view> others;  // files of that name in other folders
    const auto compare = [&](std::wstring_view other) {
        if (EqualsIgnoreCase(FileNameOf(other), name) && !EqualsIgnoreCase(other, path))
            others.push_back(other);
    };
    for (const auto& member : order_.members)
        compare(member->DllName());
    for (const LeftOutPlugin& one : leftOut_)
        compare(one.path);
    if (others.empty() || FolderOf(path).empty()) return name;
    const auto most = std::ranges::count(path, L'\\');
    int depth = 1;
    const auto isShared = [&](std::wstring_view other) {
        return EqualsIgnoreCase(LastFolders(other, depth), LastFolders(path, depth));
    };
    while (depth < most && std::ranges::any_of(others, isShared))
        ++depth;
    return std::wstring(LastFolders(path, depth)) + L'\\' + name;
}

}  // namespace tessary
