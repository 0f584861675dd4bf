#include "ui/options/used_libraries.h"

#include <windows.h>

#include "library_versions.h"

#define TESSARY_WIDE(text) L"" text
#define TESSARY_TEXT_OF(number) #number
#define TESSARY_TEXT(number) TESSARY_TEXT_OF(number)
#define TESSARY_COMPILER TESSARY_WIDE(TESSARY_TEXT(__GNUC__))

namespace tessary {
namespace {

// The notices of docs/dependencies.md and of the licences themselves, in the user's language.
constexpr UsedLibrary kLibraries[] = {
    {L"てっさりビューア", TESSARY_WIDE(TESSARY_VERSION), L"MIT",
     L"著作権表示と許諾表示を残すかぎり、無償で使用、複製、変更、再配布できます。無保証です。\r\n"
     L"ライセンスの全文は、配布ファイルに含まれています。ほかのライブラリのライセンスの全文も同様で"
     L"す。"},
    {L"libjpeg-turbo", TESSARY_WIDE(TESSARY_VERSION_jpeg), L"IJG, BSD-3-Clause, zlib",
     L"JPEGの読み書きに使用しています。\r\nThis software is based in part on the work of the "
     L"Independent JPEG Group.\r\n無保証です。"},
    {L"libpng", TESSARY_WIDE(TESSARY_VERSION_png), L"libpng-2.0",
     L"PNGの読み書きに使用しています。出所を偽らないこと、変更したものはその旨を示すことが"
     L"条件です。無保証です。"},
    {L"zlib", TESSARY_WIDE(TESSARY_VERSION_zlib), L"zlib",
     L"PNG、ZIP、gzipの圧縮と展開に使用しています。出所を偽らないこと、変更したものはその旨を"
     L"示すことが条件です。無保証です。"},
    {L"libdeflate", TESSARY_WIDE(TESSARY_VERSION_deflate), L"MIT",
     L"PNGの高速な圧縮に使用しています。著作権表示と許諾表示を残すことが条件です。無保証です。"},
    {L"libarchive", TESSARY_WIDE(TESSARY_VERSION_archive), L"BSD-2-Clause ほか",
     L"ZIP、7z、RAR、CAB、tarの展開に使用しています。著作権表示、条件、免責の表示を残すことが"
     L"条件です。無保証です。"},
    {L"XZ Utils (liblzma)", TESSARY_WIDE(TESSARY_VERSION_lzma), L"パブリックドメイン",
     L"7z、ZIP、.tar.xzの中のLZMAとXZの展開に使用しています。無保証です。"},
    {L"bzip2 (libbz2)", TESSARY_WIDE(TESSARY_VERSION_bzip2), L"bzip2 (BSD形式)",
     L"ZIP、7z、.tar.bz2の中のbzip2の展開に使用しています。出所を偽らないこと、変更したものは"
     L"その旨を示すことが条件です。無保証です。"},
    {L"Lhasa", TESSARY_WIDE(TESSARY_VERSION_lhasa), L"ISC",
     L"LZHの展開に使用しています。著作権表示と許諾表示を残すことが条件です。無保証です。"},
    {L"Little CMS", TESSARY_WIDE(TESSARY_VERSION_lcms), L"MIT",
     L"画像の色をカラープロファイルに従って変換するために使用しています。著作権表示と許諾表示を残す"
     L"ことが条件です。無保証です。"},
    {L"libexif", TESSARY_WIDE(TESSARY_VERSION_exif), L"LGPL-2.1 以降",
     L"写真の撮影情報（EXIF）の読み書きに使用しています。別の版に差し替えて作り直せることが条件です"
     L"。"
     L"無保証です。"},
    {L"mingw-w64", TESSARY_WIDE(__MINGW64_VERSION_STR), L"ZPL-2.1, MIT",
     L"C言語のランタイムとスレッドに使用しています。著作権表示を残すことが条件です。無保証です。"},
    {L"GCC (libstdc++, libgcc)", TESSARY_COMPILER, L"GPL-3.0 + 例外",
     L"C++言語のランタイムに使用しています。GCC Runtime Library Exceptionにより、このプログラムの"
     L"ライセンスには影響しません。無保証です。"},
};

}  // namespace

std::span<const UsedLibrary> UsedLibraries() {
    return kLibraries;
}

std::wstring BuildText() {
    return std::to_wstring(sizeof(void*) * 8) + L"ビット版 (GCC " TESSARY_COMPILER L")";
}

}  // namespace tessary
