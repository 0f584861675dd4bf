#include "app/base/scan_folders.h"

#include <windows.h>

#include <optional>
#include <set>
#include <utility>

#include "app/base/extension_filter.h"
#include "app/base/file_identity.h"
#include "app/base/handles.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr DWORD kHiddenOrSystem = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

class Scan {
  public:
    Scan(const ScanRequest& request, const std::function<bool(ScanNews&&)>& tell)
        : subFolders_(request.subFolders), filter_(request.extensions), tell_(tell) {
        folders_.push_back(WithBackslash(request.folder));
    }

    DWORD Run() {
        DWORD firstError = ERROR_SUCCESS;
        // The list grows at its end: level by level.
        for (size_t next = 0; next < folders_.size(); ++next) {
            const std::wstring folder = folders_[next];
            if (subFolders_ && !listed_.insert(IdentityOf(folder)).second) continue;
            news_.folder = folder;
            if (!Tell()) break;
            const std::optional<DWORD> error = List(folder);
            if (!error) break;
            if (next == 0) {
                firstError = *error;
            } else if (*error != ERROR_SUCCESS) {
                news_.unreadable.push_back(folder);
            }
        }
        Tell();
        return firstError;
    }

  private:
    static std::wstring WithBackslash(const std::wstring& folder) {
        return folder.ends_with(L'\\') ? folder : folder + L'\\';
    }

    bool Tell() {
        ScanNews told = std::exchange(news_, {news_.folder, news_.looked, {}, {}});
        return tell_(std::move(told));
    }

    // The system's error; nothing when the scan is to end.
    std::optional<DWORD> List(const std::wstring& folder) {
        WIN32_FIND_DATAW entry;
        const UniqueFind find(FindFirstFileExW(ExtendedPath(folder + L'*').c_str(), FindExInfoBasic,
                                               &entry, FindExSearchNameMatch, nullptr,
                                               FIND_FIRST_EX_LARGE_FETCH));
        if (!find) {
            // An empty drive has not even the entries that a folder has for itself.
            const DWORD error = GetLastError();
            return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
        }
        do {
            if ((entry.dwFileAttributes & kHiddenOrSystem) != 0) continue;
            if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
                AddFolder(folder, entry.cFileName);
            } else if (!AddFile(folder, entry)) {
                return std::nullopt;
            }
        } while (FindNextFileW(find.Get(), &entry));
        const DWORD error = GetLastError();
        return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
    }

    void AddFolder(const std::wstring& folder, std::wstring_view name) {
        if (!subFolders_ || name == L"." || name == L"..") return;
        std::wstring& added = folders_.emplace_back();
        added.reserve(folder.size() + name.size() + 1);
        added.append(folder).append(name).append(1, L'\\');
    }

    // False when the scan is to end.
    bool AddFile(const std::wstring& folder, const WIN32_FIND_DATAW& entry) {
        if (filter_.Wants(entry.cFileName)) news_.files.push_back(FoundFileOf(folder, entry));
        return ++news_.looked % kScanStep != 0 || Tell();
    }

    const bool subFolders_;
    const ExtensionFilter filter_;
    const std::function<bool(ScanNews&&)>& tell_;
    std::vector<std::wstring> folders_;  // to list, in order; with trailing backslashes
    std::set<std::wstring> listed_;      // by their identities
    ScanNews news_;
};

}  // namespace

unsigned long ScanFolders(const ScanRequest& request,
                          const std::function<bool(ScanNews&& news)>& tell) {
    return Scan(request, tell).Run();
}

}  // namespace tessary
