// Reading a file before its turn.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/base/error.h"
#include "convert/source_picture.h"
#include "picture/show/shown_file.h"
#include "plugin/file_stamp.h"

namespace tessary {

// A file whose kind is known, and more than that when it was read before its turn.
struct SourceFile {
    FileKind kind = kFileUnknown;
    std::wstring pluginKey;                // of a picture and an archive
    std::optional<SourcePicture> picture;  // of a picture of either kind that has been read
    std::vector<RaisedError> errors;       // what went wrong unexpectedly meanwhile
};

// Finds out what a file is. The plug-in that accepts it stays bound to it.
SourceFile LookAtFile(const std::wstring& path);

// Holds one file that was read before its turn, as long as nobody changes it.
class ReadAhead {
  public:
    ReadAhead() = default;
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead();

    // Reads a file of at most kMostBytes. When that cannot be done nothing is held.
    void Read(const std::wstring& path);
    // What was read of the file, which is not held any more; nothing when another one was read.
    std::optional<SourceFile> Take(const std::wstring& path);

    // While a file is read: takes an unexpected error, which is told in its turn. False else.
    bool Keep(const RaisedError& error);

    static constexpr uint64_t kMostBytes = 256u << 10;

  private:
    std::wstring path_;  // empty: none is held
    FileStamp stamp_;
    SourceFile file_;
    bool reads_ = false;
};

}  // namespace tessary
