// Pictures that are read before they are asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "picture/read/read_picture.h"
#include "plugin/file_stamp.h"

namespace tessary {

// What a picture is read of.
struct AheadEntry {
    std::wstring path{};  // full, of a file or of an archive
    int32_t member = 0;   // its place in the plug-in's list, from 1; 0: the file itself

    bool operator==(const AheadEntry&) const = default;
};

// Makes of a picture what the view will show of it, on the thread that has read it; empty: the
// picture itself will do.
using PreparePicture = std::function<Picture(const Picture&)>;

// What is told of a picture that was read, with another owner of its memory.
ReadResult AnotherOf(const ReadResult& read);

// A picture with all that is told of it.
struct AheadPicture {
    AheadEntry entry{};
    FileStamp stamp{};  // of the file as it was read
    ReadResult read{};  // of a picture's kind
    std::wstring memberDamage{};
    Picture prepared{};

    // The same once more; the pictures share their memory.
    AheadPicture Another() const;
    // Of both pictures, in bytes.
    size_t Size() const;
};

}  // namespace tessary
