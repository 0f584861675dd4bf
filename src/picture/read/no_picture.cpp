#include "picture/read/no_picture.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

constexpr const wchar_t* kNames[] = {L"THUMBS.DB", L"EHTHUMBS.DB", L"DESKTOP.INI", L".DS_STORE"};

// Not here, though seldom pictures: what may hold some (archives, disc images, books, vector
// graphics), and extensions that say nothing (DAT, BIN, TMP).
constexpr std::wstring_view kTexts =
    L" TXT MD LOG INI CFG CONF INF NFO DIZ CSV TSV HTM HTML XHTML CSS XML XSL XSD JSON YAML "
    L"YML TOML RTF TEX BIB URL LNK WEBLOC XMP THM CUE M3U M3U8 PLS SFV MD5 SHA1 SHA256 SRT "
    L"ASS SSA EML VCF ICS REG ";
constexpr std::wstring_view kDocuments =
    L" PDF DOC DOCX DOCM DOT DOTX XLS XLSX XLSM XLSB XLT PPT PPTX PPTM PPS PPSX ODT ODS ODP "
    L"ODG PUB VSD VSDX MSG ONE CHM HLP JTD JTT JBW JSD ";
constexpr std::wstring_view kVideos =
    L" MP4 M4V MOV QT AVI WMV ASF MPG MPEG MPE M1V M2V MP2V VOB MKV WEBM FLV F4V SWF 3GP "
    L"3G2 TS MTS M2TS OGV RM RMVB DIVX IFO BUP ";
constexpr std::wstring_view kSounds =
    L" MP3 MP2 M4A AAC WAV WMA OGG OGA OPUS FLAC APE TAK TTA AIF AIFF AU MID MIDI RMI AMR "
    L"MOD S3M XM IT ";
constexpr std::wstring_view kPrograms =
    L" EXE COM DLL OCX SYS DRV CPL SCR SPI MSI MSP MSU BAT CMD PS1 VBS VBE WSF JS JAR CLASS "
    L"PYC SO DYLIB O OBJ LIB A PDB APK ";
constexpr std::wstring_view kDataBases = L" DB DB3 SQLITE SQLITE3 MDB ACCDB LDB DBF ";
constexpr std::wstring_view kSourceCode =
    L" C H CC HH CPP HPP CXX HXX CS BAS JAVA KT PY RB PL PM PHP ASP ASPX JSP JSX TSX GO RS "
    L"SWIFT LUA SQL SH BASH ASM PAS DPR RC IDL MAK CMAKE SLN VCPROJ VCXPROJ CSPROJ ";
constexpr std::wstring_view kFonts = L" TTF TTC OTF FON FNT EOT WOFF WOFF2 PFB PFM AFM ";

constexpr std::wstring_view kExtensions[] = {kTexts,    kDocuments, kVideos,     kSounds,
                                             kPrograms, kDataBases, kSourceCode, kFonts};

bool HasKnownExtension(const std::wstring& name) {
    const std::wstring extension = UpperExtensionOf(name);
    if (extension.empty() || extension.find(L' ') != extension.npos) return false;
    return std::ranges::any_of(kExtensions, [word = L' ' + extension + L' '](auto words) {
        return words.find(word) != words.npos;
    });
}

}  // namespace

bool IsNoPicture(const std::wstring& path) {
    const std::wstring name = ToUpper(FileNameOf(path));
    // Other systems keep beside each file what this one has no place for.
    return std::ranges::find(kNames, name) != std::end(kNames) || name.starts_with(L"._") ||
           HasKnownExtension(name);
}

}  // namespace tessary
