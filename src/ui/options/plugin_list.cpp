#include "ui/options/plugin_list.h"

#include <windows.h>

#include <cwchar>

#include "app/base/error.h"
#include "app/base/load_refusal.h"
#include "app/base/paths.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_ends.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

constexpr ListView::Column kColumns[] = {
    {.caption = L"ファイル", .width = 98},
    {.caption = L"種類", .width = 42},
    {.caption = L"対応パターン", .width = 86},
    {.caption = L"バージョン・理由", .width = 124, .fills = true},
    {.caption = L"状態", .width = 86},
    {.caption = L"エラー", .width = 46, .isNumber = true}};

std::wstring StateOf(const clsSusie& plugin, const PluginEnds& ends) {
    if (ends.IsGivenUp()) return L"停止中";
    if (ends.IsAlone()) return L"隔離中";
    if (plugin.IsUnloadable()) return L"読み込めません";
    if (!plugin.IsLoaded()) return L"未ロード";
    return plugin.IsKeptLoaded() ? L"保持" : L"ロード済み";
}

std::wstring StateOf(LeftOutReason reason) {
    switch (reason) {
        case LeftOutReason::kBarred:
        case LeftOutReason::kGivenUp:
            return L"停止中";
        case LeftOutReason::kRenamed:
            return L"旧版";
        case LeftOutReason::kSkipped:
        case LeftOutReason::kWaiting:
            return L"読み込み待ち";
        case LeftOutReason::kNoFolder:
            return L"見つかりません";
        case LeftOutReason::kEmptyFolder:
            return L"空";
        case LeftOutReason::kBlocked:
            return L"ブロック中";
        default:
            return L"読み込めません";
    }
}

std::wstring ReasonOf(const LeftOutPlugin& one) {
    switch (one.reason) {
        case LeftOutReason::kGivenUp:
            return L"何度も異常終了しました";
        case LeftOutReason::kNoHost:
            return L"tessary-host32.exeを起動できません";
        case LeftOutReason::kNoDll:
            return L"DLLではありません";
        case LeftOutReason::kOtherMachine:
            return sizeof(void*) == 4 ? L"32ビット用ではありません" : L"64ビット用ではありません";
        case LeftOutReason::kNoPlugin:
            return L"必要な関数がありません";
        case LeftOutReason::kCrashed:
            return L"読み込み中に異常終了しました";
        case LeftOutReason::kRenamed:
            return L"新しい版があります。削除できます";
        case LeftOutReason::kBarred:
            return L"続けて異常終了しました";
        case LeftOutReason::kSkipped:
            return L"前回の読み込み中に終了しました";
        case LeftOutReason::kWaiting:
            return L"次回に読み込みます";
        case LeftOutReason::kNoFolder:
            return L"フォルダが見つかりません";
        case LeftOutReason::kEmptyFolder:
            return L"使用できるプラグインがありません";
        default:
            return one.loadError != 0 ? LoadRefusalText(one.loadError) : L"初期化失敗かDLLの不足";
    }
}

// Some names under which failures are kept are not those of the functions: what they stand for is
// added, or takes their place.
std::wstring FunctionText(const std::wstring& function) {
    if (function == L"GetPrevew") return L"GetPreview";
    if (function == L"GetFileSS") return L"GetFileSS, ConfigurationDlg";
    return function;
}

PluginEnds EndsOf(const std::wstring& plugin) {
    return Trapped(PluginEnds(), [&] { return ReadEnds(plugin); });
}

// What matters most of it.
const std::wstring& NoteOf(const PluginFacts& plugin) {
    if (!plugin.ends.empty()) return plugin.ends;
    return plugin.leftOut.empty() ? plugin.version : plugin.leftOut;
}

std::wstring DateText(const FILETIME& time) {
    SYSTEMTIME universal{};
    SYSTEMTIME local{};
    if (!FileTimeToSystemTime(&time, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local)) {
        return L"不明";
    }
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%04d/%02d/%02d %02d:%02d:%02d", local.wYear,
                  local.wMonth, local.wDay, local.wHour, local.wMinute, local.wSecond);
    return text;
}

std::wstring WithThousands(uint64_t number) {
    std::wstring digits = std::to_wstring(number);
    for (size_t at = digits.size(); at > 3;) {
        at -= 3;
        digits.insert(at, 1, L',');
    }
    return digits;
}

std::wstring FileText(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &data)) {
        return L"\r\n更新日時: ファイルが見つかりません";
    }
    const uint64_t size = uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
    return L"\r\n更新日時: " + DateText(data.ftLastWriteTime) + L"\r\nサイズ: " +
           WithThousands(size) + L" バイト";
}

}  // namespace

std::vector<PluginFacts> ListPlugins() {
    std::vector<PluginFacts> plugins;
    for (const auto& member : SusieCollection().NewEnum()) {
        const PluginEnds ends = EndsOf(member->DllName());
        plugins.push_back({.path = member->DllName(),
                           .file = SusieCollection().NameOf(member->DllName()),
                           .kind = member->DllStyle() == kStyleArchive ? L"圧縮" : L"画像",
                           .patterns = member->FileType(0),
                           .version = member->ProductName(),
                           .state = StateOf(*member, ends),
                           .leftOut = {},
                           .ends = TextOf(ends),
                           .isBarred = ends.IsGivenUp(),
                           .errors = member->ErrorCount({}),
                           .hasSettings = member->SupportConfigurationDialog()});
    }
    for (const LeftOutPlugin& one : SusieCollection().LeftOut()) {
        const bool isFolder = IsFolderReason(one.reason);
        plugins.push_back({.path = one.path,
                           .file = isFolder ? one.path : SusieCollection().NameOf(one.path),
                           .kind = L"－",
                           .patterns = {},
                           .version = {},
                           .state = StateOf(one.reason),
                           .leftOut = ReasonOf(one),
                           .ends = TextOf(EndsOf(one.path)),
                           .isFolder = isFolder,
                           .isBarred = IsBarredReason(one.reason),
                           .errors = Trapped(0, [&] { return ReadErrorCount(one.path, {}); })});
    }
    return plugins;
}

void SetPluginColumns(ListView& list) {
    list.SetColumns(kColumns);
}

void ShowPlugins(ListView& list, const std::vector<PluginFacts>& plugins) {
    std::vector<ListView::Row> rows;
    rows.reserve(plugins.size());
    for (const PluginFacts& plugin : plugins) {
        rows.push_back({plugin.file, plugin.kind, plugin.patterns, NoteOf(plugin), plugin.state,
                        std::to_wstring(plugin.errors)});
    }
    list.SetRows(std::move(rows));
}

std::vector<PluginErrors> ErrorsOf(const PluginFacts& plugin) {
    std::vector<PluginErrors> errors;
    Trapped([&] {
        for (const FunctionErrors& entry : ReadFunctionErrors(plugin.path))
            errors.push_back({FunctionText(entry.function), entry.count});
    });
    return errors;
}

std::wstring DescribePlugin(const PluginFacts& plugin) {
    std::wstring text = plugin.file;
    if (plugin.leftOut.empty()) {
        text += L"\r\nバージョン: " + plugin.version + L"\r\n種類: " + plugin.kind +
                L"プラグイン\r\n対応パターン: " + plugin.patterns;
    }
    if (!plugin.isFolder) text += L"\r\n場所: " + plugin.path + FileText(plugin.path);
    text += L"\r\n状態: " + plugin.state;
    if (!plugin.leftOut.empty()) text += L"（" + plugin.leftOut + L"）";
    if (plugin.isFolder) return text + L"\r\n";
    if (!plugin.ends.empty()) text += L"\r\n異常の記録: " + plugin.ends;
    if (plugin.isBarred)
        text += L"\r\n環境設定でエラー回数を消去するか、ファイルを取り替えると、また読み込みます。";
    text += L"\r\nエラー: " + std::to_wstring(plugin.errors) + L" 回";
    for (const PluginErrors& error : ErrorsOf(plugin)) {
        text += L"\r\n    " + error.function + L": " + std::to_wstring(error.count) + L" 回";
    }
    return text + L"\r\n";
}

}  // namespace tessary
