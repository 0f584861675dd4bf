#include "app/helper_libraries.h"

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/load_refusal.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

struct HelperLibrary {
    const wchar_t* fileName;
    const wchar_t* missingText;  // null: the program does without it
};

constexpr HelperLibrary kHelperLibraries[] = {
    {L"pic_kernel.dll", nullptr},
    {L"plg_resize.fplg", nullptr},
    {L"bmp_import.iplg", nullptr},
    {L"bmp_export.eplg", nullptr},
    {L"dcjpeg.dll", L"DCJPEG.DLL が見つかりません。"},
    {L"dcpng.dll", L"DCPNG.DLL が見つかりません。"},
    {L"convertdib.dll", L"CONVERTDIB.DLL が見つかりません。"},
    {L"susiectl.dll", L"SUSIECTL.DLL が見つかりません。"},
};

// What the user can do when the system blocks our files.
constexpr wchar_t kBlockedHint[] =
    L"\r\n説明書 (manualフォルダのindex.html) の「Windowsにブロックされたとき」をご覧ください。";

// `error`: of loading it.
std::wstring FailureOf(const HelperLibrary& library, DWORD error) {
    if (!PathExists(AppFolder() + library.fileName) && !IsBlockedBySystem(error)) {
        return library.missingText;
    }
    return ToUpper(library.fileName) + L" を読み込めません。" + LoadRefusalText(error) + L"。" +
           (IsBlockedBySystem(error) ? kBlockedHint : L"");
}

// What the user will miss, for the program does without the library.
std::wstring NoticeOf(const HelperLibrary& library, DWORD error) {
    if (!PathExists(AppFolder() + library.fileName)) return {};
    return ToUpper(library.fileName) + L" を読み込めないため、画像の大きさを変えられません。" +
           LoadRefusalText(error);
}

}  // namespace

HelperLibraries CheckHelperLibraries() {
    // The current folder is where some picture lies: no place to look for anybody's libraries.
    SetDllDirectoryW(L"");
    // What is wrong is told by our message and not by the system's.
    const UINT oldMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    HelperLibraries result;
    for (const HelperLibrary& library : kHelperLibraries) {
        UniqueModule module(LoadLibraryW((AppFolder() + library.fileName).c_str()));
        if (module) {
            (void)module.Release();  // resident until the process ends
            continue;
        }
        const DWORD error = GetLastError();
        if (library.missingText != nullptr) {
            result.failure = FailureOf(library, error);
            break;
        }
        if (result.notice.empty()) result.notice = NoticeOf(library, error);
    }
    SetErrorMode(oldMode);
    return result;
}

}  // namespace tessary
