#include "plugin/no_host.h"

namespace tessary {
namespace {

constexpr wchar_t kNotStarted[] =
    L"プラグインを実行するプログラム (tessary-host32.exe) を起動できません";

}  // namespace

std::wstring NoHostText(uint32_t loadError) {
    switch (loadError) {
        case kErrorHostMissing:
            return std::wstring(kNotStarted) + L"（ファイルが見つかりません）";
        case kErrorHostForeign:
            return std::wstring(kNotStarted) + L"（別のプログラムか、壊れたファイルです）";
        case kErrorHostVersion:
            return std::wstring(kNotStarted) + L"（バージョンが異なります）";
        default:
            return kNotStarted;
    }
}

bool IsNoHostText(std::wstring_view text) {
    return text.starts_with(kNotStarted);
}

}  // namespace tessary
