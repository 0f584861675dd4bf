// Getting a picture out of a file or an archive's member: who can read it, and who does.
#pragma once

#include <cstdint>
#include <string>

#include "picture/picture.h"
#include "picture/show/picture_view.h"
#include "picture/show/shown_file.h"

namespace tessary {

// What came of the attempts to read a picture. The picture is there exactly for a picture's kind.
struct ReadResult {
    ShownFile file;
    Picture picture;
    std::wstring subject;  // how messages name it
};

// Reads a file, with a plug-in unless it is a bitmap. A plug-in that takes it and then fails does
// not end the search: the next may do better. Nothing stays bound to a picture; to an archive the
// plug-in that took it does.
ReadResult ReadPictureFile(const std::wstring& path, PictureView& view);

// The same for an archive's member, given by its place in the plug-in's list (from 1).
ReadResult ReadArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view);

// The message about something that is not shown.
std::wstring FailureText(const std::wstring& subject, const std::wstring& reason);

}  // namespace tessary
