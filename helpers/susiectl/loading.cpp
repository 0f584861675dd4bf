// The entries that load and free plug-in files.
#include "helpers/susiectl/entry.h"
#include "helpers/susiectl/exception_codes.h"
#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/heap_check.h"
#include "helpers/susiectl/image_file.h"
#include "helpers/susiectl/leftover_windows.h"
#include "helpers/susiectl/library_search.h"
#include "helpers/susiectl/loader_state.h"
#include "helpers/susiectl/plugin_threads.h"
#include "helpers/susiectl/susiectl.h"

namespace tessary::susiectl {
namespace {

// Makes an error the thread's last one at the very end: what tidies up behind a call changes it.
class KeptError {
  public:
    KeptError() = default;
    KeptError(const KeptError&) = delete;
    KeptError& operator=(const KeptError&) = delete;
    ~KeptError() { SetLastError(error_); }

    void Keep(DWORD error) { error_ = error; }

  private:
    DWORD error_ = ERROR_SUCCESS;
};

// What is called under guard: the guard's own tidying up changes the thread's error.
HMODULE __stdcall LoadTellingError(const wchar_t* path, DWORD* error) {
    const HMODULE module = LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module) return module;
    *error = GetLastError();
    if (IsCrash(*error, InnermostGuard()->lastException)) *error = kErrorCrashed;
    return nullptr;
}

// Freeing succeeds also when the DLL's end crashes.
BOOL __stdcall FreeTellingErrors(HMODULE module, bool* hasMetErrors) {
    const BOOL isFreed = FreeLibrary(module);
    *hasMetErrors = IsSystemError(InnermostGuard()->lastException);
    return isFreed;
}

// As the guard does for what it has taken itself.
void CheckAfterContainedCrash() {
    SetRecovering(true);
    CheckHeaps();
}

// The crash of a DllMain is the system's to contain: only it knows how to take the DLL back. The
// guard is for the state that the DLL leaves behind, and for what the system lets through.
HMODULE Load(const std::wstring& path) {
    KeptError error;
    const WayBack wayBack;
    const std::wstring full = FullPath(path);
    {
        const InputFile file(full);
        if (!file.IsOpen() || !IsLoadableDll(file)) {
            error.Keep(file.IsOpen() ? ERROR_BAD_EXE_FORMAT : GetLastError());
            return nullptr;
        }
    }
    const LibrarySearchScope search;
    const KnownWindows windows;
    DWORD refusal = ERROR_SUCCESS;
    const auto module =
        GuardedCall(AddressOf(LoadTellingError), {Word(full.c_str()), Word(&refusal)}, Net::kNone);
    if (refusal == kErrorCrashed) CheckAfterContainedCrash();
    error.Keep(module ? refusal : kErrorCrashed);
    windows.EnableAgain();
    return reinterpret_cast<HMODULE>(module.value_or(0));
}

int Free(HMODULE module) {
    const WayBack wayBack;
    if (!module || RunsThreads(module) || !LetGoOfWindows(module)) return FALSE;
    bool hasMetErrors = false;
    const auto freed =
        GuardedCall(AddressOf(FreeTellingErrors), {Word(module), Word(&hasMetErrors)}, Net::kNone);
    if (hasMetErrors) CheckAfterContainedCrash();
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
