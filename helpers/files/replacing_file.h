// A file that takes its place only when it is complete.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "helpers/files/byte_sink.h"

namespace tessary::files {

// What a power cut may cost: nothing, or a file that is quickly made again.
enum class Durability { kDisk, kCache };

// Written under a name of its own in the target's folder; Commit puts it in the target's place in
// one step. Whatever happens before that (an error, a full disk, the end of the process) leaves the
// target as it was and the folder without the file. Only a power cut leaves it, as ~tessary-1.tmp
// or with a higher number; a day later it gives way to the next one with that name.
class ReplacingFile final : public ByteSink {
  public:
    // Creates the file. `target` may be longer than MAX_PATH. A target that is a folder, a device
    // or read-only is refused here, before anybody has worked for it.
    explicit ReplacingFile(const std::wstring& target);
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;
    ~ReplacingFile() override;

    // The rest may be called only when this is true.
    bool IsOpen() const { return file_ != nullptr; }
    // Collects small pieces in a buffer.
    bool Write(std::span<const uint8_t> bytes) noexcept override;
    // Replaces the target, with kDisk only after all that was written has reached the disk. The
    // file is closed then, with and without success.
    bool Commit(Durability durability = Durability::kDisk) noexcept;
    // Why one of the above was false, as the system's error code.
    DWORD Error() const { return error_; }

  private:
    struct CloseFile {
        void operator()(HANDLE file) const { CloseHandle(file); }
    };
    using UniqueFile = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseFile>;

    bool AcceptsTarget();
    void CreateBesideTarget();
    // Creates written_, which must not exist.
    bool Create() noexcept;
    bool WriteThrough(std::span<const uint8_t> bytes) noexcept;
    bool WriteBuffered() noexcept;
    bool MoveToTarget(Durability durability) noexcept;
    // Decides what happens when the file is closed, however that comes about.
    bool DeleteWhenClosed(bool deletes) noexcept;
    // Notes the system's error; always false.
    bool Fail() noexcept;

    std::wstring target_;
    std::wstring written_;
    UniqueFile file_;
    std::vector<uint8_t> buffer_;
    DWORD error_ = ERROR_SUCCESS;
};

}  // namespace tessary::files
