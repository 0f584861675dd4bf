#include "plugin/member_file.h"

#include <windows.h>

#include "app/base/paths.h"
#include "app/base/write_error.h"
#include "helpers/files/replacing_file.h"

namespace tessary {
namespace {

// The system's error, 0 for none.
DWORD MakeOwnFolder(const std::wstring& folder) {
    const std::wstring path = ExtendedPath(folder);
    if (CreateDirectoryW(path.c_str(), nullptr)) return ERROR_SUCCESS;
    const DWORD error = LastWriteError(folder);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isThere = attributes != INVALID_FILE_ATTRIBUTES &&
                         (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
                         (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    return isThere ? DWORD{ERROR_SUCCESS} : error;
}

}  // namespace

uint32_t WriteMemberFile(const std::wstring& folder, const std::wstring& fileName,
                         std::span<const uint8_t> content, uint64_t changed) {
    const std::wstring path = AddBackslash(folder) + fileName;
    for (size_t end = fileName.find(L'\\'); end != std::wstring::npos;
         end = fileName.find(L'\\', end + 1)) {
        const std::wstring between = path.substr(0, path.size() - fileName.size() + end);
        if (const DWORD error = MakeOwnFolder(between)) return error;
    }
    files::ReplacingFile file(path);
    file.SetDates({.changed = changed});
    // The archive still has it: a power cut may cost the copy.
    const bool isWritten =
        file.IsOpen() && file.Write(content) && file.Commit(files::Durability::kCache);
    return isWritten ? DWORD{ERROR_SUCCESS} : file.Error();
}

}  // namespace tessary
