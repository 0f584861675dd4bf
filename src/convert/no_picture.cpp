#include "convert/no_picture.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr const wchar_t* kNames[] = {L"THUMBS.DB", L"EHTHUMBS.DB", L"DESKTOP.INI", L".DS_STORE"};

constexpr const wchar_t* kExtensions[] = {L"TXT", L"MD",  L"LOG", L"INI",  L"CFG", L"NFO", L"DIZ",
                                          L"CSV", L"TSV", L"HTM", L"HTML", L"CSS", L"XML", L"JSON",
                                          L"RTF", L"URL", L"LNK", L"XMP",  L"CUE", L"SFV", L"MD5"};

bool Holds(const auto& names, const std::wstring& name) {
    return std::ranges::find(names, name) != std::end(names);
}

}  // namespace

bool IsNoPicture(const std::wstring& path) {
    const std::wstring name = ToUpper(FileNameOf(path));
    // Other systems keep beside each file what this one has no place for.
    return Holds(kNames, name) || Holds(kExtensions, UpperExtensionOf(name)) ||
           name.starts_with(L"._");
}

FileReason ReasonUnknown(const std::wstring& path) {
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) {
        switch (GetLastError()) {
            case ERROR_FILE_NOT_FOUND:
            case ERROR_PATH_NOT_FOUND:
                return FileReason::kMissing;
            case ERROR_ACCESS_DENIED:
                return FileReason::kAccessDenied;
            default:
                return FileReason::kUnreadable;
        }
    }
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file.Get(), &size) && size.QuadPart == 0) return FileReason::kEmptyFile;
    return SusieCollection().Count() == 0 ? FileReason::kNoPlugin : FileReason::kUnknownFormat;
}

}  // namespace tessary
