// The per-user settings store: text values addressed by section and key, kept in the registry under
// HKEY_CURRENT_USER\Software\Tessary_Viewer\<section> as REG_SZ.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/base/handles.h"

namespace tessary {

// The text of a value, or `defaultText` when it is missing. Throws RaisedError when the store
// cannot be read or the value is no text.
std::wstring GetSetting(std::wstring_view section, std::wstring_view key,
                        std::wstring_view defaultText = {});

// Stores a text. Throws RaisedError when it cannot be written.
void SaveSetting(std::wstring_view section, std::wstring_view key, std::wstring_view text);

// Stores the texts of several keys of one section, in that order: faster than one by one.
using KeyAndText = std::pair<std::wstring_view, std::wstring_view>;
void SaveSettings(std::wstring_view section, std::span<const KeyAndText> texts);

// Removes a value; a missing one is no error. Throws RaisedError when it cannot be removed.
void DeleteSetting(std::wstring_view section, std::wstring_view key);

// The keys of a section, in no order; none when it is missing. Throws RaisedError when the store
// cannot be read.
std::vector<std::wstring> SettingKeys(std::wstring_view section);

// The keys of a section with their texts, in no order; what is no text is left out. None when the
// section is missing. Throws RaisedError when the store cannot be read.
std::vector<std::pair<std::wstring, std::wstring>> SettingTexts(std::wstring_view section);

// Removes a section with all its keys; a missing one is no error.
void DeleteSettingSection(std::wstring_view section);

// A section that is there only for a while, again and again. It stays open meanwhile, which spares
// the system a third of the work. Not for several threads.
class PassingSection {
  public:
    // Stores texts in the section, which was removed before. Throws RaisedError when they cannot be
    // written.
    void Save(std::wstring_view section, std::span<const KeyAndText> texts);
    // Removes the section that was saved last, if any, with all its keys; a missing one is no
    // error. Throws RaisedError when that cannot be done.
    void Remove();

  private:
    std::wstring section_;
    UniqueKey opened_;
};

// Moves the whole store to another key below HKEY_CURRENT_USER. The environment variable
// TESSARY_SETTINGS_KEY does the same for a whole process: a second, separate set of settings, and
// what keeps tests off the user's own.
void RedirectSettingsStore(std::wstring_view keyPath);
// Where it is, for another process that is to have the same.
std::wstring SettingsStoreKey();

}  // namespace tessary
