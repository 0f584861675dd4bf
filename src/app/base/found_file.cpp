#include "app/base/found_file.h"

#include "app/base/paths.h"

namespace tessary {
namespace {

uint64_t Joined(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

// Both records of the system have these fields.
template <typename Data>
void TakeOver(const Data& data, FoundFile& file) {
    file.size = Joined(data.nFileSizeHigh, data.nFileSizeLow);
    file.time = Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
}

}  // namespace

FoundFile FoundFileOf(std::wstring_view folder, const WIN32_FIND_DATAW& entry) {
    FoundFile file;
    const std::wstring_view name(entry.cFileName);
    file.path.reserve(folder.size() + name.size());
    file.path.append(folder).append(name);
    TakeOver(entry, file);
    return file;
}

FoundFile NamedFileOf(const std::wstring& path) {
    FoundFile file{.path = path, .isNamed = true};
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &data)) {
        TakeOver(data, file);
    }
    return file;
}

std::vector<std::wstring> PathsOf(const std::vector<FoundFile>& files) {
    std::vector<std::wstring> paths;
    paths.reserve(files.size());
    for (const FoundFile& file : files)
        paths.push_back(file.path);
    return paths;
}

}  // namespace tessary
