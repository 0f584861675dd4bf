#include "files/at_target.h"

#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "files/same_content.h"

namespace tessary {

AtTarget LookAtTarget(const std::wstring& path, const std::wstring& target) {
    if (!PathExists(path) || IsFolder(path)) return AtTarget::kNoSource;
    if (!PathExists(target)) return AtTarget::kNothing;
    // Hard links of one file differ.
    if (EqualsIgnoreCase(FileNameOf(path), FileNameOf(target)) &&
        IsSameFile(FolderOf(path), FolderOf(target))) {
        return AtTarget::kItself;
    }
    if (IsFolder(target)) return AtTarget::kFolder;
    return HaveSameContent(path, target) ? AtTarget::kSame : AtTarget::kOther;
}

}  // namespace tessary
