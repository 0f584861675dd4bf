#include "picture/read/natural_order.h"

#include <windows.h>

#include <algorithm>
#include <limits>
#include <string>
#include <string_view>

namespace tessary {
namespace {

constexpr std::wstring_view kDigits = L"0123456789";

// Answers its bytes; 0: they are more than `size`. With a `size` of 0 only tells how many.
int SortKey(std::wstring_view text, char* key, int size) {
    return LCMapStringEx(
        LOCALE_NAME_USER_DEFAULT,
        LCMAP_SORTKEY | NORM_IGNORECASE | NORM_IGNOREWIDTH | NORM_IGNOREKANATYPE | SORT_STRINGSORT,
        text.data(), static_cast<int>(text.size()), reinterpret_cast<wchar_t*>(key), size, nullptr,
        nullptr, 0);
}

// The letters of a text as bytes that compare as the user's language orders them, whatever their
// case, width, accents and kind of kana. No byte is below 2.
std::string LetterWeights(std::wstring_view text) {
    std::string key(text.size() * 8 + 16, '\0');
    int size = SortKey(text, key.data(), static_cast<int>(key.size()));
    if (size == 0) {  // some characters weigh as much as five
        key.resize(static_cast<size_t>(SortKey(text, nullptr, 0)));
        size = SortKey(text, key.data(), static_cast<int>(key.size()));
    }
    key.resize(static_cast<size_t>(size));
    // Behind the first 1 stand the differences that are to be ignored.
    key.resize(std::min(key.find('\1'), key.size()));
    return key;
}

// A run of digits in its place among the letters: then by its length, then digit by digit.
void AppendNumber(std::wstring_view digits, std::string& key) {
    static const std::string digitWeight = LetterWeights(L"0").substr(0, 1);
    digits.remove_prefix(std::min(digits.find_first_not_of(L'0'), digits.size()));
    constexpr size_t kLongest = std::numeric_limits<unsigned char>::max() - 2;
    key += digitWeight;
    key += static_cast<char>(2 + std::min(digits.size(), kLongest));
    for (const wchar_t digit : digits)
        key += static_cast<char>(digit);
}

// Bytes that compare as a file or folder name is to be ordered, none of them below 2.
std::string NameKey(std::wstring_view name) {
    std::string key;
    while (!name.empty()) {
        const size_t digits = std::min(name.find_first_not_of(kDigits), name.size());
        if (digits > 0) AppendNumber(name.substr(0, digits), key);
        name.remove_prefix(digits);
        const size_t letters = std::min(name.find_first_of(kDigits), name.size());
        if (letters > 0) key += LetterWeights(name.substr(0, letters));
        name.remove_prefix(letters);
    }
    return key;
}

// The same for a folder's path, so that it stands before the folders in it.
std::string FolderKey(std::wstring_view folder) {
    std::string key;
    while (!folder.empty()) {
        const size_t end = std::min(folder.find(L'\\'), folder.size());
        key += NameKey(folder.substr(0, end)) + '\1';
        folder.remove_prefix(std::min(end + 1, folder.size()));
    }
    return key;
}

struct Keyed {
    std::string folderKey;
    std::string nameKey;
    ListedMember member;
};

bool IsBefore(const Keyed& left, const Keyed& right) {
    if (const int order = left.folderKey.compare(right.folderKey); order != 0) return order < 0;
    if (const int order = left.nameKey.compare(right.nameKey); order != 0) return order < 0;
    // Names that differ only in what is ignored.
    return left.member.name < right.member.name;
}

}  // namespace

void SortNaturally(std::vector<ListedMember>& members) {
    std::vector<Keyed> keyed;
    keyed.reserve(members.size());
    std::wstring folder;  // of the member before
    for (ListedMember& member : members) {
        const size_t nameStart = member.name.rfind(L'\\') + 1;
        const bool sameFolder = !keyed.empty() && member.name.compare(0, nameStart, folder) == 0;
        folder = member.name.substr(0, nameStart);
        std::string folderKey = sameFolder ? keyed.back().folderKey : FolderKey(folder);
        std::string nameKey = NameKey(std::wstring_view(member.name).substr(nameStart));
        keyed.push_back({std::move(folderKey), std::move(nameKey), std::move(member)});
    }
    std::ranges::stable_sort(keyed, IsBefore);
    std::ranges::transform(keyed, members.begin(),
                           [](Keyed& entry) { return std::move(entry.member); });
}

}  // namespace tessary
