#include "app/settings/settings_store.h"

#include <windows.h>

#include <algorithm>

#include "app/base/error.h"

// Of the system's native interface: deletes the key behind a handle. ZwDeleteKey is its documented
// name in the kernel.
extern "C" LONG NTAPI NtDeleteKey(HANDLE key);

namespace tessary {
namespace {

std::wstring InitialKeyPath() {
    wchar_t redirected[256];
    const DWORD length = GetEnvironmentVariableW(L"TESSARY_SETTINGS_KEY", redirected, 256);
    if (length > 0 && length < 256) return redirected;
    return LR"(Software\Tessary_Viewer)";
}

std::wstring& KeyPath() {
    static std::wstring path = InitialKeyPath();
    return path;
}

std::wstring SectionPath(std::wstring_view section) {
    return KeyPath() + L'\\' + std::wstring(section);
}

[[noreturn]] void Fail(LSTATUS status) {
    throw RaisedError(static_cast<uint32_t>(status), L"レジストリにアクセスできません。");
}

bool IsMissing(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

UniqueKey SavedSection(std::wstring_view section, std::span<const KeyAndText> texts,
                       REGSAM access) {
    UniqueKey opened;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, SectionPath(section).c_str(), 0, nullptr, 0,
                                     KEY_SET_VALUE | access, nullptr, opened.Receive(), nullptr);
    for (size_t i = 0; status == ERROR_SUCCESS && i < texts.size(); ++i) {
        const std::wstring value(texts[i].second);
        status = RegSetValueExW(opened.Get(), std::wstring(texts[i].first).c_str(), 0, REG_SZ,
                                reinterpret_cast<const BYTE*>(value.c_str()),
                                static_cast<DWORD>(value.size() + 1) * sizeof(wchar_t));
    }
    if (status != ERROR_SUCCESS) Fail(status);
    return opened;
}

// Hands out the values of a section: key, type, and the data as if it were a text. Nothing when the
// section is missing.
template <typename Take>
void ForEachValue(std::wstring_view section, Take&& take) {
    constexpr DWORD kLongestName = 16383;  // of a value, by the registry's own limits
    UniqueKey opened;
    const LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, SectionPath(section).c_str(), 0,
                                         KEY_QUERY_VALUE, opened.Receive());
    if (IsMissing(status)) return;
    if (status != ERROR_SUCCESS) Fail(status);
    std::wstring name(kLongestName + 1, L'\0');
    std::wstring data(1024, L'\0');
    for (DWORD index = 0;;) {
        DWORD length = kLongestName + 1;
        DWORD size = static_cast<DWORD>(data.size()) * sizeof(wchar_t);
        DWORD type = REG_NONE;
        const LSTATUS next = RegEnumValueW(opened.Get(), index, name.data(), &length, nullptr,
                                           &type, reinterpret_cast<BYTE*>(data.data()), &size);
        if (next == ERROR_MORE_DATA) {
            data.resize(std::max<size_t>(data.size() * 2, size / sizeof(wchar_t) + 1));
            continue;
        }
        if (next != ERROR_SUCCESS) return;
        take(std::wstring(name.data(), length), type, data.substr(0, size / sizeof(wchar_t)));
        ++index;
    }
}

}  // namespace

std::wstring GetSetting(std::wstring_view section, std::wstring_view key,
                        std::wstring_view defaultText) {
    const std::wstring path = SectionPath(section);
    const std::wstring name(key);
    // Most values are short: one query does for them, and a value that grows between two queries
    // only costs a turn.
    std::wstring text(128, L'\0');
    for (;;) {
        DWORD size = static_cast<DWORD>(text.size()) * sizeof(wchar_t);
        const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name.c_str(),
                                            RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND,
                                            nullptr, text.data(), &size);
        if (IsMissing(status)) return std::wstring(defaultText);
        if (status == ERROR_MORE_DATA) {
            text.resize(size / sizeof(wchar_t) + 1);
            continue;
        }
        if (status == ERROR_UNSUPPORTED_TYPE) {
            throw RaisedError(kErrorTypeMismatch, L"型が一致しません。");
        }
        if (status != ERROR_SUCCESS) Fail(status);
        text.resize(wcsnlen(text.c_str(), size / sizeof(wchar_t)));
        return text;
    }
}

void SaveSetting(std::wstring_view section, std::wstring_view key, std::wstring_view text) {
    const KeyAndText texts[] = {{key, text}};
    SaveSettings(section, texts);
}

void SaveSettings(std::wstring_view section, std::span<const KeyAndText> texts) {
    SavedSection(section, texts, 0);
}

void DeleteSetting(std::wstring_view section, std::wstring_view key) {
    const LSTATUS status = RegDeleteKeyValueW(HKEY_CURRENT_USER, SectionPath(section).c_str(),
                                              std::wstring(key).c_str());
    if (status != ERROR_SUCCESS && !IsMissing(status)) Fail(status);
}

std::vector<std::wstring> SettingKeys(std::wstring_view section) {
    std::vector<std::wstring> keys;
    ForEachValue(section, [&](const std::wstring& key, auto&&...) { keys.push_back(key); });
    return keys;
}

std::vector<std::pair<std::wstring, std::wstring>> SettingTexts(std::wstring_view section) {
    std::vector<std::pair<std::wstring, std::wstring>> texts;
    ForEachValue(section, [&](const std::wstring& key, DWORD type, const std::wstring& data) {
        if (type == REG_SZ) texts.emplace_back(key, data.substr(0, data.find(L'\0')));
    });
    return texts;
}

void DeleteSettingSection(std::wstring_view section) {
    const std::wstring path = SectionPath(section);
    // The quick way refuses only what has sections of its own.
    LSTATUS status = RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
    if (status == ERROR_ACCESS_DENIED) status = RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
    if (status != ERROR_SUCCESS && !IsMissing(status)) Fail(status);
}

void PassingSection::Save(std::wstring_view section, std::span<const KeyAndText> texts) {
    section_ = section;
    opened_ = SavedSection(section, texts, DELETE);
}

// A key with keys of its own, or one that is no longer there, is not deleted this way.
void PassingSection::Remove() {
    const bool isRemoved = opened_ && NtDeleteKey(opened_.Get()) >= 0;
    opened_.Reset();
    if (!isRemoved && !section_.empty()) DeleteSettingSection(section_);
}

void RedirectSettingsStore(std::wstring_view keyPath) {
    KeyPath() = keyPath;
}

std::wstring SettingsStoreKey() {
    return KeyPath();
}

}  // namespace tessary
