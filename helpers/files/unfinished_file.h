// A file under a name of its own, until it is finished and gets the one that it is for.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "helpers/files/file_calls.h"

namespace tessary::files {

// What becomes of a file that has the name.
enum class Existing { kStays, kIsReplaced };

// It goes with this object, or with the process, unless it has been moved. The latter needs a file
// system that lets a file be marked to be deleted and the mark be taken back; whether it does is
// tried once on each volume, before the first file there is written. Elsewhere the end of the
// process leaves the file.
class UnfinishedFile {
  public:
    // The calls must outlive it.
    explicit UnfinishedFile(FileCalls& calls) : calls_(calls) {}
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile() { Discard(); }

    // Creates it in a folder, given with its backslash, for that target (both in the form of
    // ExtendedFullName). Throws std::bad_alloc. Where this or one of the others answers false,
    // GetLastError tells why.
    bool Create(const std::wstring& target, DWORD attributes);
    // Has the system delete it when it is closed, however that comes about. Only the target's owner
    // can open it until then.
    void Mark() noexcept;

    // Null: there is none, or it could not be moved while it was open.
    HANDLE Get() const { return file_.get(); }
    const std::wstring& Name() const { return name_; }

    // Tries once to give it the target's name; it is still open then, if it was. After a failure it
    // can be tried again.
    bool MoveToTarget(Existing existing) noexcept;
    // Closes what has been moved; false when the file has vanished in that.
    bool Close() noexcept;
    // Closes and deletes it, unless it has been moved.
    void Discard() noexcept;

  private:
    struct CloseFile {
        void operator()(HANDLE file) const { CloseHandle(file); }
    };
    using UniqueFile = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseFile>;

    bool CreateAs(const std::wstring& name, DWORD attributes);
    // Finds out whether a mark can be taken back on this volume, which costs the file.
    bool TryMark();
    bool SetMark(bool deletes) noexcept;
    bool Rename(Existing existing) noexcept;
    bool RenameOpen(FILE_INFO_BY_HANDLE_CLASS kind, DWORD flags) noexcept;
    bool RenameClosed(Existing existing) noexcept;
    bool IsThere(const std::wstring& name) noexcept;

    FileCalls& calls_;
    std::wstring target_;
    std::wstring name_;  // empty: there is none, or it has become the target
    UniqueFile file_;
    bool isRemote_ = false;
    bool takesMarkBack_ = false;
    bool isMarked_ = false;
    std::vector<uint8_t> rename_;  // a FILE_RENAME_INFO, ready: the last step takes no memory
};

}  // namespace tessary::files
