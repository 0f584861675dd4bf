#include "host/host_program.h"

#include <windows.h>

#include <iterator>
#include <string_view>

#include "app/base/load_refusal.h"
#include "app/base/paths.h"
#include "plugin/no_host.h"

namespace tessary {
namespace {

// As they stand in its version resource, each with its end.
constexpr std::wstring_view kName(L"tessary-host32\0", 15);
constexpr std::wstring_view kVersion(TESSARY_VERSION, std::size(TESSARY_VERSION));

// A file's resources, to be read.
class ResourceFile {
  public:
    explicit ResourceFile(const std::wstring& path)
        : module_(LoadLibraryExW(path.c_str(), nullptr,
                                 LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE)) {}
    ResourceFile(const ResourceFile&) = delete;
    ResourceFile& operator=(const ResourceFile&) = delete;
    ~ResourceFile() {
        if (module_ != nullptr) FreeLibrary(module_);
    }

    bool IsOpen() const { return module_ != nullptr; }

    // Empty when there is none.
    std::wstring_view Version() const {
        const HRSRC found = FindResourceW(module_, MAKEINTRESOURCEW(1), RT_VERSION);
        const HGLOBAL loaded = found != nullptr ? LoadResource(module_, found) : nullptr;
        const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
        if (bytes == nullptr) return {};
        return {static_cast<const wchar_t*>(bytes),
                SizeofResource(module_, found) / sizeof(wchar_t)};
    }

  private:
    HMODULE module_;
};

}  // namespace

uint32_t WhyNoHostProgram(const std::wstring& path) {
    if (!PathExists(path)) return kErrorHostMissing;
    const ResourceFile file(path);
    if (!file.IsOpen()) return IsBlockedBySystem(GetLastError()) ? kErrorNoHost : kErrorHostForeign;
    const std::wstring_view version = file.Version();
    if (version.find(kName) == version.npos) return kErrorHostForeign;
    return version.find(kVersion) == version.npos ? kErrorHostVersion : 0;
}

}  // namespace tessary
