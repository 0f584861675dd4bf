#include "plugin/left_out_plugin.h"

#include <windows.h>

#include "app/base/error.h"
#include "app/base/handles.h"
#include "app/base/load_refusal.h"
#include "app/base/paths.h"
#include "helpers/susiectl/susiectl.h"
#include "plugin/no_host.h"
#include "plugin/plugin_ends.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

#ifdef _WIN64
constexpr WORD kOurMachine = IMAGE_FILE_MACHINE_AMD64;
#else
constexpr WORD kOurMachine = IMAGE_FILE_MACHINE_I386;
#endif

template <typename Header>
bool ReadAt(HANDLE file, LONG offset, Header& header) {
    DWORD count = 0;
    return SetFilePointer(file, offset, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER &&
           ReadFile(file, &header, sizeof header, &count, nullptr) && count == sizeof header;
}

}  // namespace

LeftOutReason WhyNotLoaded(const std::wstring& path, uint32_t loadError) {
    if (loadError == susiectl::kErrorCrashed) return LeftOutReason::kCrashed;
    if (IsNoHost(loadError)) return LeftOutReason::kNoHost;
    if (IsBlockedBySystem(loadError)) return LeftOutReason::kBlocked;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ, kShareAll, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return LeftOutReason::kNotLoadable;
    // The head is the same for all architectures; what follows it is not looked at.
    struct {
        DWORD signature;
        IMAGE_FILE_HEADER file;
    } head{};
    IMAGE_DOS_HEADER dos{};
    if (!ReadAt(file.Get(), 0, dos) || dos.e_magic != IMAGE_DOS_SIGNATURE || dos.e_lfanew <= 0 ||
        !ReadAt(file.Get(), dos.e_lfanew, head) || head.signature != IMAGE_NT_SIGNATURE ||
        (head.file.Characteristics & IMAGE_FILE_DLL) == 0) {
        return LeftOutReason::kNoDll;
    }
    return head.file.Machine == kOurMachine ? LeftOutReason::kNotLoadable
                                            : LeftOutReason::kOtherMachine;
}

std::optional<LeftOutReason> WhyBarred(const std::wstring& path) {
    if (Trapped(false, [&] { return ReadEnds(path).IsGivenUp(); })) return LeftOutReason::kGivenUp;
    if (Trapped(false, [&] { return KeepsEndingTheProgram(path); })) return LeftOutReason::kBarred;
    return std::nullopt;
}

}  // namespace tessary
