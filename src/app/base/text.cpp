#include "app/base/text.h"

#include <windows.h>

namespace tessary {
namespace {

constexpr int kCharacterCodes = 256;
constexpr UINT kShiftJis = 932;

std::string Convert(std::wstring_view text, DWORD flags, BOOL* lost) {
    if (text.empty()) return {};
    // A system whose code page is UTF-8 loses nothing, and refuses to be asked.
    if (GetACP() == CP_UTF8) {
        flags = 0;
        lost = nullptr;
    }
    const int length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(CP_ACP, flags, text.data(), length, nullptr, 0, nullptr, lost);
    std::string result(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, flags, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::wstring Widened(std::string_view text, UINT codePage, DWORD flags) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = MultiByteToWideChar(codePage, flags, text.data(), length, nullptr, 0);
    std::wstring result(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(codePage, flags, text.data(), length, result.data(), size);
    return result;
}

}  // namespace

std::wstring FromAnsi(std::string_view text) {
    return FromAnsi(text, GetACP());
}

std::wstring FromAnsi(std::string_view text, unsigned systemCodePage) {
    if (systemCodePage == CP_UTF8) {
        for (const UINT codePage : {UINT{CP_UTF8}, kShiftJis}) {
            std::wstring exact = Widened(text, codePage, MB_ERR_INVALID_CHARS);
            if (!exact.empty()) return exact;
        }
    }
    return Widened(text, systemCodePage, 0);
}

std::string ToAnsi(std::wstring_view text) {
    return Convert(text, 0, nullptr);
}

std::optional<std::string> ToAnsiExact(std::wstring_view text) {
    // A best-fit character (a full-width sign turned into a half-width one) names another file: not
    // exact.
    BOOL lost = FALSE;
    std::string result = Convert(text, WC_NO_BEST_FIT_CHARS, &lost);
    if (lost || FromAnsi(result) != text) return std::nullopt;
    return result;
}

std::wstring ToUpper(std::wstring_view text) {
    if (text.empty()) return {};
    std::wstring result(text.size(), L'\0');
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.data(),
                  static_cast<int>(text.size()), result.data(), static_cast<int>(result.size()),
                  nullptr, nullptr, 0);
    return result;
}

bool EqualsIgnoreCase(std::wstring_view left, std::wstring_view right) {
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}

bool MatchesWildcard(std::wstring_view name, std::wstring_view pattern) {
    // Only the last `*` has to be tried again: what an earlier one swallowed never needs to grow.
    size_t n = 0;
    size_t p = 0;
    size_t star = std::wstring_view::npos;
    size_t starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            star = p++;
            starName = n;
        } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != std::wstring_view::npos) {
            p = star + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*')
        ++p;
    return p == pattern.size();
}

int SplitText(std::wstring_view text, int characterCode, std::vector<std::wstring>& pieces) {
    pieces.clear();
    if (characterCode >= kCharacterCodes) return 0;
    for (;;) {
        const size_t end = text.find(static_cast<wchar_t>(characterCode));
        pieces.emplace_back(text.substr(0, end));
        if (end == std::wstring_view::npos) return static_cast<int>(pieces.size());
        text.remove_prefix(end + 1);
    }
}

std::wstring_view TrimSpaces(std::wstring_view text) {
    const size_t first = text.find_first_not_of(L' ');
    if (first == std::wstring_view::npos) return {};
    return text.substr(first, text.find_last_not_of(L' ') - first + 1);
}

}  // namespace tessary
