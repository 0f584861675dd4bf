#include "convert_cli/help_text.h"

#include <string_view>

namespace tessary {
namespace {

constexpr wchar_t kHelp[] =
    LR"(使い方: tessary-convert [オプション] --out フォルダ ファイルまたはフォルダ...

画像ファイルをまとめて BMP、PNG、JPEG に変換します。読み込みには、てっさりビューアと同じ
Susie プラグインと設定を使います。設定は書き換えません。指定のないオプションには、
ビューアで設定した値を使います。フォルダを指定すると、その中のファイルを変換します。
保存先に同じ名前のファイルがあれば置き換えます。違うフォルダの同じ名前のファイルは、
後に変換したものが残ります。

  --out フォルダ          保存先（なければ作ります）
  --recursive             サブフォルダの中のファイルも変換する
  --format 形式           保存形式 (bmp, png, jpg)
  --format-low 形式       256 色以下の画像の保存形式
  --format-high 形式      256 色を超える画像の保存形式
  --unpack, --no-unpack   圧縮ファイルを展開する・しない
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
  --encoding 名前         標準出力をファイルやパイプに送るときの文字コード
                          (utf-8, shift_jis, ansi, oem)。初めは utf-8。
                          コンソールにはコンソールの文字で表示します
  --bmp-type 種類         windows または os2
  --bmp-rle, --no-bmp-rle BMP を圧縮する・しない
  --png-level 数          PNG の圧縮率 (0-9)
  --png-interlace, --no-png-interlace
  --jpeg-quality 数       JPEG の品質 (0-100)
  --jpeg-progressive, --no-jpeg-progressive
  --jpeg-optimize, --no-jpeg-optimize
  --help, --version
  --                      この後はすべてファイル名

Ctrl+C を押すと、変換中のファイルを終えてから中止します。もう一度押すと、すぐに終了します。
終了コード: 0 すべて変換した（フィルタで除いたものは数えません）、
            1 変換できなかったファイルがある、または中止した、2 引数や設定の誤り

Usage: tessary-convert [options] --out FOLDER FILE-OR-FOLDER...

Converts pictures to BMP, PNG or JPEG with the Susie plug-ins and settings of Tessary Viewer,
which are never changed. Where no option says otherwise the viewer's settings hold. A folder
stands for the files in it. A file of the same name in the target folder is replaced; of files
of one name from different folders the one converted last remains.

  --out FOLDER            where to save (made if missing)
  --recursive             also convert the files in sub-folders
  --format FORMAT         bmp, png or jpg
  --format-low FORMAT     for pictures of up to 256 colours
  --format-high FORMAT    for pictures of more than 256 colours
  --unpack, --no-unpack   expand archives or not
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
  --encoding NAME         of standard output when it is redirected: utf-8 (default),
                          shift_jis, ansi or oem; a console shows its own characters
  --bmp-type TYPE         windows or os2
  --bmp-rle, --no-bmp-rle run-length encoding
  --png-level N           compression, 0 to 9
  --png-interlace, --no-png-interlace
  --jpeg-quality N        0 to 100
  --jpeg-progressive, --no-jpeg-progressive
  --jpeg-optimize, --no-jpeg-optimize
  --help, --version
  --                      only names follow

Ctrl+C stops after the file that is being converted; a second one ends the program at once.
Exit status: 0 all converted (what filters leave out does not count), 1 some were not or the
run was stopped, 2 wrong arguments or settings
)";

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
    return WithCrLf(kHelp);
}

std::wstring VersionText() {
    return L"tessary-convert " TESSARY_VERSION L"\r\n";
}

}  // namespace tessary
