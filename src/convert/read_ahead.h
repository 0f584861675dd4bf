// Reading a file before its turn.
#pragma once

#include <optional>
#include <string>

#include "picture/read/read_picture.h"
#include "plugin/file_stamp.h"

namespace tessary {

// A file that is to be converted, as far as it is known.
struct SourceAtHand {
    SourceFile file;
    std::optional<ReadResult> read{};  // once its picture was read
};

// Whether a file is read in a moment, by its size: the way to another process would take longer.
// One that is not there is not.
bool IsReadInAMoment(const std::wstring& path);

// Holds one file that was read before its turn, as long as nobody changes it.
class ReadAhead {
  public:
    ReadAhead() = default;
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead();

    // Reads a file. When that cannot be done, or is a long work, as with one that is not on this
    // disk, nothing is held. Never throws.
    void Read(const std::wstring& path) noexcept;
    // What was read of the file; nothing when another one was read. Nothing is held then.
    std::optional<SourceAtHand> Take(const std::wstring& path);

    // To be told of unexpected errors: whether a file is being read, which will be read once more
    // in its turn.
    bool Disturb();

  private:
    FileStamp stamp_;
    std::optional<SourceAtHand> held_;
    bool reads_ = false;
    bool isDisturbed_ = false;
};

}  // namespace tessary
