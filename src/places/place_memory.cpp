#include "places/place_memory.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <string_view>
#include <utility>

#include "app/base/error.h"
#include "app/base/text.h"
#include "app/settings/settings_store.h"
#include "places/memory_lock.h"

namespace tessary {
namespace {

// In these the key of an entry is its path or place, its text `when` or `when|place`: the number
// orders them.
constexpr wchar_t kRecent[] = L"Recent";
constexpr wchar_t kBookmarks[] = L"Bookmarks";
constexpr wchar_t kPlaces[] = L"Places";

// In this one as well, with the text `when|choices`.
constexpr wchar_t kBooks[] = L"Books";
constexpr std::wstring_view kChoices = L"orc";  // a letter for each that is made

// And in this one with `when|by|descending|seed`, numbers all of them.
constexpr wchar_t kOrders[] = L"Orders";

constexpr wchar_t kMemory[] = L"Memory";
constexpr wchar_t kRemember[] = L"Remember";
constexpr wchar_t kLastSeen[] = L"LastSeen";

constexpr size_t kLongestKey = 16383;  // by the registry's own limits

struct Entry {
    uint64_t when = 0;
    std::wstring key;
};

uint64_t Now() {
    FILETIME time{};
    GetSystemTimeAsFileTime(&time);
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// Newest first. What is damaged counts as oldest.
std::vector<Entry> EntriesOf(const wchar_t* section) {
    std::vector<Entry> entries;
    for (auto& [key, text] : Trapped(std::vector<std::pair<std::wstring, std::wstring>>(),
                                     [&] { return SettingTexts(section); })) {
        const uint64_t when = std::wcstoull(text.c_str(), nullptr, 10);
        entries.push_back({when == UINT64_MAX ? 0 : when, std::move(key)});
    }
    std::ranges::stable_sort(entries, std::ranges::greater(), &Entry::when);
    return entries;
}

// As the newest, whatever the clock says; those that are too many go.
void Put(const wchar_t* section, const std::wstring& key, const std::wstring& text, size_t most) {
    if (key.empty() || key.size() > kLongestKey) return;
    Trapped([&] {
        std::vector<Entry> entries = EntriesOf(section);
        const uint64_t when = std::max(Now(), entries.empty() ? 0 : entries.front().when + 1);
        SaveSetting(section, key, std::to_wstring(when) + text);
        std::erase_if(entries, [&](const Entry& one) { return EqualsIgnoreCase(one.key, key); });
        for (size_t i = most - 1; i < entries.size(); ++i)
            DeleteSetting(section, entries[i].key);
    });
}

void Drop(const wchar_t* section, const std::wstring& key) {
    Trapped([&] { DeleteSetting(section, key); });
}

}  // namespace

bool IsRemembering() {
    return Trapped(false, [] { return GetSetting(kMemory, kRemember, L"1") != L"0"; });
}

void SetRemembering(bool on) {
    const MemoryLock held;
    Trapped([&] { SaveSetting(kMemory, kRemember, on ? L"1" : L"0"); });
    if (!on) ForgetPlaces();
}

void ForgetPlaces() {
    const MemoryLock held;
    Trapped([] { DeleteSettingSection(kRecent); });
    Trapped([] { DeleteSettingSection(kPlaces); });
    Trapped([] { DeleteSettingSection(kBooks); });
    Trapped([] { DeleteSettingSection(kOrders); });
    Drop(kMemory, kLastSeen);
}

void ForgetBookmarks() {
    Trapped([] { DeleteSettingSection(kBookmarks); });
}

// --- What was opened by hand ---

std::vector<std::wstring> RecentPaths() {
    std::vector<std::wstring> paths;
    for (Entry& entry : EntriesOf(kRecent))
        paths.push_back(std::move(entry.key));
    return paths;
}

void AddRecent(const std::wstring& path) {
    const MemoryLock held;
    if (IsRemembering()) Put(kRecent, path, {}, kMostRecent);
}

void DropRecent(const std::wstring& path) {
    Drop(kRecent, path);
}

// --- Bookmarks ---

std::vector<Place> Bookmarks() {
    std::vector<Place> places;
    for (const Entry& entry : EntriesOf(kBookmarks))
        places.push_back(PlaceOfText(entry.key));
    std::erase_if(places, [](const Place& place) { return place.IsNone(); });
    return places;
}

bool IsBookmark(const Place& place) {
    return Trapped(false, [&] { return !GetSetting(kBookmarks, ToText(place)).empty(); });
}

bool AddBookmark(const Place& place) {
    const MemoryLock held;
    if (!IsRemembering() || Bookmarks().size() >= kMostBookmarks) return false;
    Put(kBookmarks, ToText(place), {}, kMostBookmarks);
    return true;
}

void DropBookmark(const Place& place) {
    Drop(kBookmarks, ToText(place));
}

void DropBookmarksOf(const std::wstring& file) {
    for (const Place& place : Bookmarks()) {
        if (EqualsIgnoreCase(place.file, file)) DropBookmark(place);
    }
}

namespace {

// The same place in the file's new path; false when it is in another file.
bool Follow(Place& place, const std::wstring& path, const std::wstring& newPath) {
    if (!EqualsIgnoreCase(place.file, path)) return false;
    place.file = newPath;
    return true;
}

// The old one goes first: the new one may differ in upper and lower case alone.
void Replace(const wchar_t* section, const std::wstring& key, const std::wstring& newKey,
             const std::wstring& text) {
    Drop(section, key);
    Trapped([&] { SaveSetting(section, newKey, text); });
}

std::vector<std::pair<std::wstring, std::wstring>> TextsOf(const wchar_t* section) {
    return Trapped(std::vector<std::pair<std::wstring, std::wstring>>(),
                   [&] { return SettingTexts(section); });
}

}  // namespace

void FollowFile(const std::wstring& path, const std::wstring& newPath) {
    const MemoryLock held;
    for (const wchar_t* const section : {kRecent, kBooks, kOrders}) {
        for (const auto& [key, text] : TextsOf(section)) {
            if (EqualsIgnoreCase(key, path)) Replace(section, key, newPath, text);
        }
    }
    for (const auto& [key, text] : TextsOf(kBookmarks)) {
        Place place = PlaceOfText(key);
        if (Follow(place, path, newPath)) Replace(kBookmarks, key, ToText(place), text);
    }
    for (const auto& [key, text] : TextsOf(kPlaces)) {
        const size_t bar = text.find(L'|');
        Place place = bar == text.npos ? Place() : PlaceOfText(text.substr(bar + 1));
        if (!Follow(place, path, newPath)) continue;
        Replace(kPlaces, key, EqualsIgnoreCase(key, path) ? newPath : key,
                text.substr(0, bar + 1) + ToText(place));
    }
    Place last = LastSeen();
    if (Follow(last, path, newPath))
        Trapped([&] { SaveSetting(kMemory, kLastSeen, ToText(last)); });
}

// --- Where the user stopped ---

Place StoppedAt(const std::wstring& container) {
    const std::wstring text =
        Trapped(std::wstring(), [&] { return GetSetting(kPlaces, container); });
    const size_t place = text.find(L'|');
    return place == text.npos ? Place() : PlaceOfText(text.substr(place + 1));
}

Place StopWithin(const Place& place) {
    const Place inside = place.IsNone() ? Place() : StoppedAt(place.file);
    return inside.IsNone() ? place : inside;
}

void KeepStop(const std::wstring& container, const Place& place) {
    const MemoryLock held;
    if (IsRemembering()) Put(kPlaces, container, L'|' + ToText(place), kMostPlaces);
}

// --- How he reads ---

std::optional<BookChoice> BookOf(const std::wstring& container) {
    const std::wstring text =
        Trapped(std::wstring(), [&] { return GetSetting(kBooks, container); });
    const size_t at = text.find(L'|');
    if (at == text.npos) return std::nullopt;
    const auto isMade = [&](size_t choice) { return text.find(kChoices[choice], at) != text.npos; };
    return BookChoice{isMade(0), isMade(1), isMade(2)};
}

void KeepBook(const std::wstring& container, const BookChoice& choice) {
    const MemoryLock held;
    if (!IsRemembering()) return;
    std::wstring text = L"|";
    if (choice.isOpen) text += kChoices[0];
    if (choice.fromRight) text += kChoices[1];
    if (choice.coverIsAlone) text += kChoices[2];
    Put(kBooks, container, text, kMostPlaces);
}

std::optional<EntryOrder> OrderOf(const std::wstring& container) {
    const std::wstring text =
        Trapped(std::wstring(), [&] { return GetSetting(kOrders, container); });
    unsigned long parts[3]{};
    size_t at = 0;
    for (unsigned long& part : parts) {
        at = text.find(L'|', at);
        if (at == text.npos) return std::nullopt;
        part = std::wcstoul(text.c_str() + ++at, nullptr, 10);
    }
    if (parts[0] >= static_cast<unsigned long>(kOrderCount)) return std::nullopt;
    return EntryOrder{static_cast<OrderBy>(parts[0]), parts[1] != 0,
                      static_cast<uint32_t>(parts[2])};
}

void KeepOrder(const std::wstring& container, const EntryOrder& order) {
    const MemoryLock held;
    if (!IsRemembering()) return;
    Put(kOrders, container,
        L'|' + std::to_wstring(static_cast<int>(order.by)) +
            (order.isDescending ? L"|1|" : L"|0|") + std::to_wstring(order.seed),
        kMostPlaces);
}

Place LastSeen() {
    return Trapped(Place(), [] { return PlaceOfText(GetSetting(kMemory, kLastSeen)); });
}

void KeepLastSeen(const Place& place) {
    const MemoryLock held;
    if (IsRemembering()) Trapped([&] { SaveSetting(kMemory, kLastSeen, ToText(place)); });
}

}  // namespace tessary
