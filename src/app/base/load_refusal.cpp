#include "app/base/load_refusal.h"

namespace tessary {
namespace {

// These are not in the compiler's headers.
constexpr DWORD kVirusInfected = 225;
constexpr DWORD kVirusDeleted = 226;
constexpr DWORD kInvalidImageHash = 577;  // no signature that the system accepts
constexpr DWORD kDisabledByPolicyUnasked = 786;

// Those of application control and of the reputation of unknown files.
constexpr bool IsOfIntegrityPolicy(DWORD error) {
    return (error >= 4550 && error <= 4559) || (error >= 4580 && error <= 4583);
}

std::wstring ReasonOf(DWORD error) {
    switch (error) {
        case kVirusInfected:
        case kVirusDeleted:
            return L"ウイルス対策ソフトがブロックしました";
        case ERROR_ACCESS_DENIED:
            return L"読み取りが許可されていません";
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return L"ほかのプログラムが使用中です";
        case ERROR_BAD_FORMAT:
        case ERROR_BAD_EXE_FORMAT:
        case ERROR_FILE_CORRUPT:
            return L"ファイルが壊れています";
        case ERROR_MOD_NOT_FOUND:
        case ERROR_PROC_NOT_FOUND:
        case ERROR_INVALID_ORDINAL:
        case ERROR_SXS_CANT_GEN_ACTCTX:
            return L"必要なDLLがありません";
        case ERROR_DLL_INIT_FAILED:
            return L"初期化に失敗しました";
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
        case ERROR_COMMITMENT_LIMIT:
            return L"メモリーが足りません";
        default:
            return IsBlockedBySystem(error) ? L"Windowsの保護機能がブロックしました"
                                            : L"読み込めません";
    }
}

}  // namespace

bool IsBlockedBySystem(DWORD error) {
    switch (error) {
        case kVirusInfected:
        case kVirusDeleted:
        case kInvalidImageHash:
        case kDisabledByPolicyUnasked:
        case ERROR_ACCESS_DISABLED_BY_POLICY:  // rules of the administrator's
        case ERROR_ACCESS_DISABLED_WEBBLADE:
        case ERROR_ACCESS_DISABLED_WEBBLADE_TAMPER:
            return true;
        default:
            return IsOfIntegrityPolicy(error);
    }
}

std::wstring LoadRefusalText(DWORD error) {
    if (error == ERROR_SUCCESS) return {};
    return ReasonOf(error) + L" (エラー " + std::to_wstring(error) + L")";
}

}  // namespace tessary
