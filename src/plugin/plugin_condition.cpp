#include "plugin/plugin_condition.h"

#include <algorithm>

#include "app/base/text.h"

namespace tessary {
namespace {

const wchar_t* TextOf(susie::Condition kind) {
    switch (kind) {
        case susie::kConditionNone:
            return L"";
        case susie::kConditionDamaged:
            return L"データが壊れているか、途中で切れています";
        case susie::kConditionPasswordNeeded:
            return L"パスワードが必要です";
        case susie::kConditionVolumeMissing:
            return L"分割された書庫の一部です。ほかの部分が必要です";
        case susie::kConditionDirectoryEncrypted:
            return L"ファイルの一覧が暗号化されています";
        case susie::kConditionKindNotRead:
            return L"このプラグインが対応していない種類です";
    }
    return L"";
}

// One line of text without what no text has.
std::wstring Line(std::wstring_view text) {
    std::wstring line(text.substr(0, text.find(L'\0')));
    std::ranges::replace_if(
        line, [](wchar_t c) { return c < L' ' || c == L'\x7F'; }, L' ');
    return std::wstring(TrimSpaces(line));
}

}  // namespace

PluginCondition ConditionOf(int32_t answer, std::wstring_view text) {
    if (answer <= susie::kConditionNone || answer > susie::kConditionKindNotRead) return {};
    const auto kind = static_cast<susie::Condition>(answer);
    std::wstring line = Line(text);
    return {kind, line.empty() ? TextOf(kind) : std::move(line)};
}

}  // namespace tessary
