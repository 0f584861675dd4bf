// A folder on disk for what a plug-in writes and only this program is to see.
#pragma once

#include <string>

namespace tessary {

// A new folder in the user's temporary folder; removed with all that is in it at the end of the
// object's life.
class PrivateFolder {
  public:
    // Raises UnwrittenFileError when no folder can be made.
    PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder();

    // The folder to name to a plug-in, without separator at its end: one within ours, so that
    // plug-ins that forget the separator before a member's name still write into ours.
    std::wstring Target() const;

    // The full path of a file that is in the folder or in one below it; empty when there is none.
    std::wstring FirstFile() const;

    // Whether there is hardly any room left for it: plug-ins do not tell.
    bool IsDiskFull() const;

  private:
    std::wstring path_;
};

// Removes the private folders of processes that ended without doing so: by force, or in a plug-in.
// The first private folder of a process does this.
void RemoveAbandonedFolders();

}  // namespace tessary
