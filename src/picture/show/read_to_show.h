// Reading a picture for the view: it waits for files that lie elsewhere, is told how far the read
// is and may stop it, and gets the reason in words when there is nothing to show.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "picture/ahead/ahead_picture.h"
#include "picture/picture.h"
#include "picture/show/picture_view.h"
#include "picture/show/shown_file.h"

namespace tessary {

// What came of it. The picture is there exactly for a picture's kind.
struct ReadToShow {
    ShownFile file;
    Picture picture;
    Picture prepared{};      // what the view is to show of it, when that was made ahead
    Animation animation{};   // that the picture is of; of no frames: none
    std::wstring subject{};  // how messages name it
};

// Reads a file as ReadPicture (picture/read/read_picture.h) does.
ReadToShow ReadFileToShow(const std::wstring& path, PictureView& view);

// The same for a page of a file that was shown (ShownFile::pages), from 0.
ReadToShow ReadPageToShow(const std::wstring& path, uint32_t page, PictureView& view);

// The same for an archive's member, given by its place in the plug-in's list (from 1), or for one
// of its pages.
ReadToShow ReadMemberToShow(const AheadEntry& member, PictureView& view);

// The same for a block of somebody's, called `name`: bytes of a file of that name.
ReadToShow ReadBlockToShow(HLOCAL block, const std::wstring& name, PictureView& view);

// The message about something that is not shown.
std::wstring FailureText(const std::wstring& subject, const std::wstring& reason);

}  // namespace tessary
