#include "plugin/member_file.h"

#include <windows.h>

#include "app/base/paths.h"
#include "helpers/files/replacing_file.h"

namespace tessary {
namespace {

bool MakeOwnFolder(const std::wstring& folder) {
    const std::wstring path = ExtendedPath(folder);
    if (CreateDirectoryW(path.c_str(), nullptr)) return true;
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

}  // namespace

bool WriteMemberFile(const std::wstring& folder, const std::wstring& fileName,
                     std::span<const uint8_t> content) {
    const std::wstring path = AddBackslash(folder) + fileName;
    for (size_t end = fileName.find(L'\\'); end != std::wstring::npos;
         end = fileName.find(L'\\', end + 1)) {
        if (!MakeOwnFolder(path.substr(0, path.size() - fileName.size() + end))) return false;
    }
    files::ReplacingFile file(path);
    // The archive still has it: a power cut may cost the copy.
    return file.IsOpen() && file.Write(content) && file.Commit(files::Durability::kCache);
}

}  // namespace tessary
