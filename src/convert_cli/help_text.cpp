#include "convert_cli/help_text.h"

#include <functional>
#include <string_view>
#include <utility>

#include "app/settings/saver_format.h"

namespace tessary {
namespace {

constexpr wchar_t kHelp[] =
    LR"(使い方: tessary-convert [オプション] --out フォルダ ファイルまたはフォルダ...

画像ファイルをまとめて {names} に変換します。読み込みには、てっさりビューアと同じ
Susie プラグインと設定を使います。設定は書き換えません。指定のないオプションには、
ビューアで設定した値を使います。フォルダを指定すると、その中のファイルを変換します
（隠しファイルとシステムファイルは除きます）。

  --out フォルダ          保存先（なければ作ります）
  --recursive             サブフォルダの中のファイルも変換する
  --keep-folders, --no-keep-folders
                          元のフォルダの構成を保存先にも作る・作らない
  --on-conflict 方法      同じ名前のファイルがあるとき
                          rename     この実行の元のファイルと結果を守り、別名にする
                          skip       変換しない（中止した変換の続きに）
                          overwrite  何であっても置き換える
  --keep-date, --no-keep-date
                          元のファイルの日時にする・しない
  --strict, --no-strict   一部が損傷している画像を保存しない・する
  --format 形式           保存形式 ({words})
  --format-low 形式       256 色以下の画像の保存形式
  --format-high 形式      256 色を超える画像の保存形式
  --unpack, --no-unpack   圧縮ファイルを展開する・しない
  --archive-depth 数      圧縮ファイルの中の圧縮ファイルを展開する深さ (1 は展開しない)
  --jobs 数               同時に読み込むファイルの数 (1 から 8。0 は自動)
  --keep-unknown, --no-keep-unknown
                          展開したファイルのうち変換できなかったものを残す・残さない
  --min-width 画素数, --min-height 画素数
                          これより大きい画像だけを変換する
  --both, --either        幅と高さの両方が・どちらかが大きい画像を変換する
  --no-min-size           小さい画像も変換する
  --mask パターン         名前が一致するファイルだけを変換する
  --exclude-mask パターン 名前が一致するファイルを変換しない
  --no-mask               名前で選ばない
                          パターン: * ? #(数字) [文字の並び] [!文字の並び]
                          大文字と小文字を区別します
  --log ファイル          ログをファイルにも書く（システムのコードページ）
  --no-log                ログをファイルに書かない
  --append, --no-append   ログファイルに書き足す・新しく書き始める
  --report ファイル       ファイルごとの結果を JSON で 1 行ずつ書く (UTF-8):
                          source, member, target, result, frames（複数あるとき）,
                          reason, text, size, ms
                          - は標準出力に書く（ASCII。ログは標準エラー出力に移ります）
  --quiet                 変換できなかったものなどの一覧だけを表示する
  --ignore-settings       ビューアで設定した値を使わない
  --encoding 名前         出力をファイルやパイプに送るときの文字コード
                          (console, utf-8, shift_jis, ansi, oem)。初めは console で、
                          コンソールのコードページ（chcp。コンソールがなければ UTF-8）。
                          表せない文字は ? になります
{options}  --help, -h, /?, --version
  --                      この後はすべてファイル名

失敗、損傷、スキップ、別名になったファイルは、最後に理由とともに標準エラー出力に表示します。
プラグインが表示したメッセージは閉じて、標準エラー出力に書きます。
Ctrl+C を押すと、変換中のファイルを終えてから中止します。もう一度押すと、すぐに終了します。

終了コード
  0  すべて変換した（フィルタで除いたもの、画像でないもの、スキップしたものは数えません）
  1  変換できなかった、損傷している、見つからない、読み取れないファイルやフォルダがある。
     指定したフォルダが空、または名前に一致するファイルがない
  2  引数、設定、保存先の誤り。プラグインのフォルダがない、プラグインがひとつもない、
     ログやレポートを書けない（変換できるものは変換します）
  3  中止した

Usage: tessary-convert [options] --out FOLDER FILE-OR-FOLDER...

Converts pictures to {englishNames} with the Susie plug-ins and settings of Tessary Viewer,
which are never changed. Where no option says otherwise the viewer's settings hold. A folder
stands for the files in it, but for hidden and system files.

  --out FOLDER            where to save (made if missing)
  --recursive             also convert the files in sub-folders
  --keep-folders, --no-keep-folders
                          make the sources' folders anew in the target folder, or not
  --on-conflict WAY       where a file of that name exists:
                          rename     spares sources and results of this run
                          skip       leaves it; goes on with a run that was stopped
                          overwrite  replaces whatever is there
  --keep-date, --no-keep-date
                          give the results the dates of their sources, or the present time
  --strict, --no-strict   write nothing for pictures that are damaged in part, or what is there
  --format FORMAT         {englishWords}
  --format-low FORMAT     for pictures of up to 256 colours
  --format-high FORMAT    for pictures of more than 256 colours
  --unpack, --no-unpack   expand archives or not
  --archive-depth N       how deep archives in archives are expanded (1: not at all)
  --jobs N                how many files are read at the same time (1 to 8; 0: automatic)
  --keep-unknown, --no-keep-unknown
                          keep extracted files that could not be converted, or delete them
  --min-width PIXELS, --min-height PIXELS
                          convert only pictures larger than this
  --both, --either        larger in both directions, or in one of them
  --no-min-size           convert small pictures too
  --mask PATTERN          convert only files whose names match
  --exclude-mask PATTERN  convert only files whose names do not match
  --no-mask               convert whatever the names
                          patterns: * ? # (a digit) [list] [!list]; case matters
  --log FILE, --no-log    write the log to a file too (in the system's code page), or not
  --append, --no-append   add to the log file, or begin anew
  --report FILE           one line of JSON for each file, in UTF-8:
                          source, member, target, result, frames (where there are more
                          than the converted one), reason, text, size, ms
                          -: on standard output, in ASCII; the log goes to standard error
  --quiet                 tell only about files that did not become what they should
  --ignore-settings       use nothing that was set in the viewer
  --encoding NAME         of output that is redirected: console (default: its code page, see
                          chcp; utf-8 without a console), utf-8, shift_jis, ansi or oem;
                          ? stands for what it lacks
{englishOptions}  --help, -h, /?, --version
  --                      only names follow

Files that failed, were damaged, skipped or renamed are listed on standard error at the end, with
the reason. Message boxes of plug-ins are closed, and their text is written there.
Ctrl+C stops after the file that is being converted; a second one ends the program at once.

Exit status
  0  all converted (not counting what filters leave out, what is no picture, and what is skipped)
  1  files or folders failed, are damaged, missing or unreadable; a folder is empty, or a mask
     matches nothing
  2  wrong arguments, settings or target folder; a plug-in folder is away, there is no plug-in, the
     log or the report cannot be written (what can be converted is)
  3  stopped
)";

// The texts of all formats, one behind the other.
std::wstring Joined(const std::function<std::wstring(const SaverFormat&)>& textOf,
                    std::wstring_view between, std::wstring_view beforeLast) {
    const auto formats = SaverFormats();
    std::wstring joined;
    for (const SaverFormat& format : formats) {
        if (&format != &formats.front()) {
            joined += &format == &formats.back() ? beforeLast : between;
        }
        joined += textOf(format);
    }
    return joined;
}

std::wstring FilledIn(std::wstring text) {
    const auto name = [](const SaverFormat& format) { return format.name; };
    const auto word = [](const SaverFormat& format) {
        return std::wstring(format.extensions.front());
    };
    const std::pair<std::wstring_view, std::wstring> places[] = {
        {L"{names}", Joined(name, L"、", L"、")},
        {L"{englishNames}", Joined(name, L", ", L" or ")},
        {L"{words}", Joined(word, L", ", L", ")},
        {L"{englishWords}", Joined(word, L", ", L" or ")},
        {L"{options}", Joined([](const SaverFormat& format) { return format.help; }, L"", L"")},
        {L"{englishOptions}",
         Joined([](const SaverFormat& format) { return format.englishHelp; }, L"", L"")},
    };
    for (const auto& [place, filling] : places)
        text.replace(text.find(place), place.size(), filling);
    return text;
}

// With the ends of lines of a Windows text.
std::wstring WithCrLf(std::wstring_view text) {
    std::wstring result;
    for (const wchar_t character : text) {
        if (character == L'\n') result += L'\r';
        result += character;
    }
    return result;
}

}  // namespace

std::wstring HelpText() {
    return WithCrLf(FilledIn(kHelp));
}

std::wstring VersionText() {
    return L"tessary-convert " TESSARY_VERSION L"\r\n";
}

}  // namespace tessary
