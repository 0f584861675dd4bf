// The entries that load and free plug-in files.
#include "helpers/susiectl/entry.h"
#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/image_file.h"
#include "helpers/susiectl/leftover_windows.h"
#include "helpers/susiectl/library_search.h"
#include "helpers/susiectl/plugin_threads.h"
#include "helpers/susiectl/susiectl.h"

namespace tessary::susiectl {
namespace {

// The crash of a DllMain is the system's to contain: only it knows how to take the DLL back. The
// guard is for the state that the DLL leaves behind, and for what the system lets through.
HMODULE Load(const std::wstring& path) {
    const WayBack wayBack;
    const std::wstring full = FullPath(path);
    if (!IsLoadableDll(InputFile(full))) return nullptr;
    const LibrarySearchScope search;
    const EnabledWindows windows;
    const auto module =
        GuardedCall(AddressOf(LoadLibraryExW),
                    {Word(full.c_str()), 0, LOAD_WITH_ALTERED_SEARCH_PATH}, Net::kNone);
    windows.EnableAgain();
    return reinterpret_cast<HMODULE>(module.value_or(0));
}

int Free(HMODULE module) {
    const WayBack wayBack;
    if (!module || RunsThreads(module) || !LetGoOfWindows(module)) return FALSE;
    const auto freed = GuardedCall(AddressOf(FreeLibrary), {Word(module)}, Net::kNone);
    return static_cast<int>(freed.value_or(FALSE));
}

}  // namespace
}  // namespace tessary::susiectl

using namespace tessary::susiectl;

SUSIECTL_ENTRY HMODULE __stdcall SPILoadLibrary(const char* path) {
    return WithoutExceptions<HMODULE>(nullptr, [&] { return Load(FromAnsi(path)); });
}

SUSIECTL_ENTRY HMODULE __stdcall SPILoadLibraryW(const wchar_t* path) {
    return WithoutExceptions<HMODULE>(nullptr, [&] { return path ? Load(path) : nullptr; });
}

SUSIECTL_ENTRY int __stdcall SPIFreeLibrary(HMODULE module) {
    return WithoutExceptions<int>(FALSE, [&] { return Free(module); });
}

SUSIECTL_ENTRY int __stdcall SPIIsInUse(HMODULE module) {
    return WithoutExceptions<int>(
        TRUE, [&] { return module && (ShowsWindows(module) || RunsThreads(module)); });
}
