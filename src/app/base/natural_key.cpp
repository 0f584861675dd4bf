#include "app/base/natural_key.h"

#include <windows.h>

#include <algorithm>
#include <limits>

namespace tessary {
namespace {

constexpr std::wstring_view kDigits = L"0123456789";
constexpr size_t kMostWeights = 4096;  // names that have nothing in common are not kept

// Answers its bytes; 0: they are more than `size`. With a `size` of 0 only tells how many.
int SortKey(std::wstring_view text, char* key, int size) {
    return LCMapStringEx(
        LOCALE_NAME_USER_DEFAULT,
        LCMAP_SORTKEY | NORM_IGNORECASE | NORM_IGNOREWIDTH | NORM_IGNOREKANATYPE | SORT_STRINGSORT,
        text.data(), static_cast<int>(text.size()), reinterpret_cast<wchar_t*>(key), size, nullptr,
        nullptr, 0);
}

// No byte is below 2.
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

}  // namespace

const std::string& NaturalKeys::WeightsOf(std::wstring_view letters) {
    std::wstring text(letters);
    if (const auto found = weights_.find(text); found != weights_.end()) return found->second;
    if (weights_.size() >= kMostWeights) weights_.clear();
    std::string weights = LetterWeights(text);
    return weights_.emplace(std::move(text), std::move(weights)).first->second;
}

// A run of digits in its place among the letters: then by its length, then digit by digit.
void NaturalKeys::AppendNumber(std::wstring_view digits, std::string& key) {
    digits.remove_prefix(std::min(digits.find_first_not_of(L'0'), digits.size()));
    constexpr size_t kLongest = std::numeric_limits<unsigned char>::max() - 2;
    key += WeightsOf(L"0").substr(0, 1);
    key += static_cast<char>(2 + std::min(digits.size(), kLongest));
    for (const wchar_t digit : digits)
        key += static_cast<char>(digit);
}

// No byte is below 2.
std::string NaturalKeys::OfName(std::wstring_view name) {
    std::string key;
    while (!name.empty()) {
        const size_t digits = std::min(name.find_first_not_of(kDigits), name.size());
        if (digits > 0) AppendNumber(name.substr(0, digits), key);
        name.remove_prefix(digits);
        const size_t letters = std::min(name.find_first_of(kDigits), name.size());
        if (letters > 0) key += WeightsOf(name.substr(0, letters));
        name.remove_prefix(letters);
    }
    return key;
}

std::string NaturalKeys::OfFolder(std::wstring_view folder) {
    std::string key;
    while (!folder.empty()) {
        const size_t end = std::min(folder.find(L'\\'), folder.size());
        key += OfName(folder.substr(0, end)) + '\1';
        folder.remove_prefix(std::min(end + 1, folder.size()));
    }
    return key;
}

}  // namespace tessary
