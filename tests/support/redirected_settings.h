// Keeps a test's settings off the user's: a key of its own, removed at the end, and the
// process-wide values reset.
#pragma once

#include <windows.h>

#include <string>

#include "app/settings/modValue.h"
#include "app/settings/settings_store.h"

namespace tessary::test {

class RedirectedSettings {
  public:
    RedirectedSettings()
        : path_(LR"(Software\Tessary_Viewer_Test\)" + std::to_wstring(GetCurrentProcessId())) {
        Remove();
        RedirectSettingsStore(path_);
        Values() = {};
    }
    RedirectedSettings(const RedirectedSettings&) = delete;
    RedirectedSettings& operator=(const RedirectedSettings&) = delete;
    ~RedirectedSettings() {
        Remove();
        Values() = {};
    }

    // The key below HKEY_CURRENT_USER that holds the sections.
    const std::wstring& KeyPath() const { return path_; }

  private:
    void Remove() const { RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str()); }

    std::wstring path_;
};

}  // namespace tessary::test
