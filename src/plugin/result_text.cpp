#include "plugin/result_text.h"

#include "plugin/plugin_connection.h"

namespace tessary {

std::wstring ResultText(int32_t result) {
    switch (result) {
        case susie::kSuccess:
            return L"プラグインが内容を返しませんでした";
        case susie::kNotImplemented:
        case kResultNotExported:
            return L"プラグインがこの処理に対応していません";
        case susie::kAborted:
            return L"中止されました";
        case susie::kUnknownFormat:
            return L"プラグインの知らない形式です";
        case susie::kBrokenData:
            return L"データが壊れています";
        case susie::kOutOfMemory:
        case susie::kMemoryError:
            return L"メモリが足りません";
        case susie::kReadError:
            return L"ファイルを読み取れません";
        case susie::kInternalError:
            return L"プラグインの内部でエラーが起きました";
        case kResultCrashed:
            return L"プラグインが異常終了しました";
        default:
            return L"プラグインのエラー (" + std::to_wstring(result) + L")";
    }
}

}  // namespace tessary
