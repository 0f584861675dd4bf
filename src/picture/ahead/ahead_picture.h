// Pictures that are read before they are asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "picture/read/read_picture.h"
#include "picture/save/encoded_picture.h"
#include "plugin/file_stamp.h"

namespace tessary {

// What a picture is read of.
struct AheadEntry {
    std::wstring path{};  // full, of a file or of an archive
    int32_t member = 0;   // its place in the plug-in's list, from 1; 0: the file itself
    uint32_t page = 0;    // of the file or member; 0: the one that it opens with
    bool atEnd = false;   // of an archive: its last picture, and not the first

    bool operator==(const AheadEntry&) const = default;
};

// Makes of a picture what the view will show of it, on the thread that has read it; empty: the
// picture itself will do.
using PreparePicture = std::function<Picture(const Picture&)>;

// Makes of what was read the file that it is to be saved as, on the same thread; null: that is left
// to others. `tell` gets the percentage done and answers false to have it stop.
using MakeFile = std::function<std::shared_ptr<const EncodedPicture>(
    const ReadResult& read, const std::function<bool(int percent)>& tell)>;

// What is told of a picture that was read, with another owner of its memory.
ReadResult AnotherOf(const ReadResult& read);

// A picture with all that is told of it.
struct AheadPicture {
    AheadEntry entry{};
    FileStamp stamp{};  // of the file as it was read
    ReadResult read{};  // of a picture's kind
    std::wstring memberDamage{};
    Picture prepared{};
    std::shared_ptr<const EncodedPicture> made{};  // in place of the picture, which is not kept

    // The same once more; the pictures share their memory.
    AheadPicture Another() const;
    // Of both pictures and the file, in bytes.
    size_t Size() const;
};

}  // namespace tessary
