#include "app/base/file_name_rules.h"

#include <algorithm>
#include <string>

#include "app/base/text.h"

namespace tessary {
namespace {

constexpr size_t kLongestName = 255;

constexpr std::wstring_view kDevices[] = {L"CON",    L"PRN",     L"AUX",   L"NUL",
                                          L"CONIN$", L"CONOUT$", L"CLOCK$"};

// COM1 to COM9, LPT1 to LPT9, with 0 and the raised digits that some versions take too.
bool IsPort(std::wstring_view name) {
    return name.size() == 4 && (name.starts_with(L"COM") || name.starts_with(L"LPT")) &&
           std::wstring_view(L"0123456789\u00B9\u00B2\u00B3").find(name[3]) !=
               std::wstring_view::npos;
}

}  // namespace

bool IsForbiddenInName(wchar_t character) {
    return character < L' ' ||
           std::wstring_view(LR"(\/:*?"<>|)").find(character) != std::wstring_view::npos;
}

bool NamesDevice(std::wstring_view name) {
    const std::wstring stem = ToUpper(TrimSpaces(name.substr(0, name.find(L'.'))));
    return IsPort(stem) || std::ranges::find(kDevices, stem) != std::end(kDevices);
}

bool IsFileName(std::wstring_view name) {
    return !name.empty() && name.size() <= kLongestName && name.back() != L'.' &&
           name.back() != L' ' && std::ranges::none_of(name, IsForbiddenInName) &&
           !NamesDevice(name);
}

}  // namespace tessary
