#include "plugins/axtessarc/member_name.h"

#include <windows.h>

#include <algorithm>
#include <string_view>

#include "helpers/files/file_name.h"
#include "helpers/susiectl/susie_interface.h"

namespace tessary::unpack {
namespace {

constexpr size_t kMostBytes = sizeof(susie::FileInfo::fileName) - 1;
constexpr size_t kMostExtensionChars = 20;
constexpr UINT kShiftJis = 932;

bool IsSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

std::wstring Wide(UINT codePage, DWORD flags, std::string_view text) {
    const auto size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
    return wide;
}

// Names of other code pages are no text in this one; those that are no UTF-8 are most likely out of
// old Japanese archives. A byte that begins no character must not take the next one with it, as it
// does in the system's conversion: that may be the extension's dot.
std::wstring WideFromAnsi(std::string_view name, UINT systemCodePage) {
    std::wstring wide = Wide(systemCodePage, MB_ERR_INVALID_CHARS, name);
    if (!wide.empty()) return wide;
    const UINT codePage = systemCodePage == CP_UTF8 ? kShiftJis : systemCodePage;
    while (!name.empty()) {
        const bool isPair =
            IsDBCSLeadByteEx(codePage, static_cast<BYTE>(name[0])) && name.size() > 1;
        const size_t length = isPair ? 2 : 1;
        const std::wstring character = Wide(codePage, MB_ERR_INVALID_CHARS, name.substr(0, length));
        wide += character.empty() ? L"_" : character;
        name.remove_prefix(character.empty() ? 1 : length);
    }
    return wide;
}

// macOS takes letters and their marks apart, for which the code page has no characters.
std::wstring Composed(const std::wstring& text) {
    const bool isTakenApart = std::any_of(text.begin(), text.end(), [](wchar_t character) {
        const bool isLatinMark = character >= 0x0300 && character <= 0x036F;
        const bool isKanaMark = character == 0x3099 || character == 0x309A;
        const bool isHangulPart = character >= 0x1161 && character <= 0x11FF;
        return isLatinMark || isKanaMark || isHangulPart;
    });
    // Others stay as they are: composing would also exchange compatibility ideographs.
    if (!isTakenApart) return text;
    const auto size = static_cast<int>(text.size());
    const int length = FoldStringW(MAP_PRECOMPOSED, text.data(), size, nullptr, 0);
    if (length <= 0) return text;
    std::wstring composed(static_cast<size_t>(length), L'\0');
    FoldStringW(MAP_PRECOMPOSED, text.data(), size, composed.data(), length);
    return composed;
}

// Converted before it is split: the second byte of a double-byte character can look like `\`.
std::wstring WideName(const Member& member, UINT systemCodePage) {
    return member.nameIsUtf8 ? Composed(Wide(CP_UTF8, 0, member.name))
                             : WideFromAnsi(member.name.c_str(), systemCodePage);
}

// Names that mean a device in any folder, whatever extension they have.
bool IsDeviceName(std::wstring_view part) {
    std::wstring stem(part.substr(0, part.find(L'.')));
    while (!stem.empty() && stem.back() == L' ')
        stem.pop_back();
    CharUpperBuffW(stem.data(), static_cast<DWORD>(stem.size()));
    for (const wchar_t* name : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"}) {
        if (stem == name) return true;
    }
    constexpr std::wstring_view kDigits = L"0123456789\u00B9\u00B2\u00B3";
    return stem.size() == 4 && (stem.starts_with(L"COM") || stem.starts_with(L"LPT")) &&
           kDigits.find(stem[3]) != std::wstring_view::npos;
}

std::wstring HarmlessPart(std::wstring_view part) {
    constexpr std::wstring_view kForbidden = L"<>:\"|?*";
    std::wstring harmless(part);
    for (wchar_t& character : harmless) {
        if (character < L' ' || kForbidden.find(character) != std::wstring_view::npos) {
            character = L'_';
        }
    }
    // The system drops blanks and dots at the end: `..` is no other case.
    for (size_t i = harmless.size(); i-- > 0;) {
        if (harmless[i] != L'.' && harmless[i] != L' ') break;
        harmless[i] = L'_';
    }
    return IsDeviceName(harmless) ? L'_' + harmless : harmless;
}

std::string Ansi(std::wstring_view text, UINT codePage) {
    if (text.empty()) return {};
    const auto size = static_cast<int>(text.size());
    // A UTF-8 code page holds everything and takes no substitute.
    const bool isUtf8 = codePage == CP_UTF8;
    const DWORD flags = isUtf8 ? 0 : WC_NO_BEST_FIT_CHARS;
    const char* const substitute = isUtf8 ? nullptr : "_";
    const int length =
        WideCharToMultiByte(codePage, flags, text.data(), size, nullptr, 0, substitute, nullptr);
    std::string ansi(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(codePage, flags, text.data(), size, ansi.data(), length, substitute,
                        nullptr);
    return ansi;
}

// `text` cut between characters so that it and `ending` fit a field.
std::string Fitting(std::wstring_view text, std::wstring_view ending, UINT codePage) {
    text = text.substr(0, kMostBytes);
    std::string fitting = Ansi(text, codePage);
    const std::string ansiEnding = Ansi(ending, codePage);
    while (fitting.size() + ansiEnding.size() > kMostBytes) {
        text.remove_suffix(1);
        if (!text.empty() && IS_HIGH_SURROGATE(text.back())) text.remove_suffix(1);
        fitting = Ansi(text, codePage);
    }
    return fitting + ansiEnding;
}

}  // namespace

ListedName ListedNameOf(const Member& member) {
    return ListedNameOf(member, GetACP());
}

ListedName ListedNameOf(const Member& member, unsigned systemCodePage) {
    const std::wstring name = WideName(member, systemCodePage);
    std::wstring folder;
    std::wstring file;
    for (auto at = name.begin(); at != name.end();) {
        const auto end = std::find_if(at, name.end(), IsSeparator);
        const std::wstring_view part(at, end);
        at = end == name.end() ? end : end + 1;
        if (part.empty() || part == L".") continue;
        if (!file.empty()) folder += file + L'\\';
        file = HarmlessPart(part);
    }
    if (file.empty()) file = L"_";
    const size_t dot = file.rfind(L'.');
    const bool hasExtension =
        dot != std::wstring::npos && dot != 0 && file.size() - dot <= kMostExtensionChars;
    const size_t stem = hasExtension ? dot : file.size();
    const std::wstring_view view(file);
    ListedName listed;
    listed.file = Fitting(view.substr(0, stem), view.substr(stem), systemCodePage);
    if (!folder.empty()) {
        folder.pop_back();
        listed.folder = Fitting(folder, L"\\", systemCodePage);
    }
    return listed;
}

std::wstring ComparableName(const std::string& name) {
    std::wstring comparable = files::FileNameOf(name.c_str());
    std::replace(comparable.begin(), comparable.end(), L'/', L'\\');
    CharUpperBuffW(comparable.data(), static_cast<DWORD>(comparable.size()));
    return comparable;
}

}  // namespace tessary::unpack
