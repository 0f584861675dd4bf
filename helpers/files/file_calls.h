// What writing a file asks of the system.
#pragma once

#include <windows.h>

#include <string>

#include "helpers/files/recent_answers.h"
#include "helpers/files/volume_memory.h"

namespace tessary::files {

// Each call as the system answers it, with GetLastError. Tests play other answers.
class FileCalls {
  public:
    FileCalls() = default;
    FileCalls(const FileCalls&) = delete;
    FileCalls& operator=(const FileCalls&) = delete;
    virtual ~FileCalls() = default;

    // CreateFileW.
    virtual HANDLE Create(const std::wstring& name, DWORD access, DWORD sharing, DWORD creation,
                          DWORD flags);
    // Whether the last Create has failed because somebody still holds a file that is deleted.
    virtual bool WasDeletePending();
    // SetFileInformationByHandle.
    virtual bool SetInformation(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* information,
                                DWORD size);
    // MoveFileExW.
    virtual bool Move(const std::wstring& name, const std::wstring& newName, DWORD flags);
    // GetFileAttributesW.
    virtual DWORD Attributes(const std::wstring& name);
    // Whether the name is one on another machine, or stands for another system's file.
    virtual bool IsRemote(const std::wstring& name);
    // A text that is another one for each volume, for an open file and its name in the form of
    // ExtendedFullName.
    std::wstring Volume(HANDLE file, const std::wstring& name);
    // Waits for so many milliseconds.
    virtual void Pause(DWORD milliseconds);

    // What is known of the volumes that were written to.
    VolumeMemory& Volumes() { return volumes_; }

  private:
    RecentAnswers<bool> remote_;
    RecentAnswers<DWORD> serials_;
    VolumeMemory volumes_;
};

// The system's own.
FileCalls& SystemFileCalls();

}  // namespace tessary::files
