// Getting the picture out of a file, or out of a block with a file's content: by the program itself
// for bitmaps, else by the plug-in that takes it.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

#include "picture/bitmap_file.h"
#include "picture/metadata/picture_origin.h"
#include "picture/picture.h"
#include "picture/picture_frames.h"
#include "picture/read/plugin_failure.h"
#include "picture/read/source_file.h"

namespace tessary {

// Who waits for a picture. Empty functions: nobody is told, and nothing is stopped.
struct ReadWatch {
    ReadProgress progress{};
    // Whether the read was asked to stop; asked behind each step as well, for plug-ins that do not
    // listen. A read that was has not failed.
    std::function<bool()> isStopped{};
    // Whether he knows what to do with a picture in its own colours (kDecodeInOwnColors).
    bool takesOwnColors = false;
    // Above 0: the picture may come smaller (DecodeWish).
    uint32_t enough = 0;
};

// What came of the attempts to read a picture.
struct ReadResult {
    FileKind kind = kFileUnknown;  // that it has turned out to be
    Picture picture{};             // there exactly for a picture's kind
    // Full path of the plug-in that read the picture, took the archive, or was the last to fail.
    std::wstring plugin{};
    uint32_t milliseconds = 0;  // that it took
    PictureFrames frames{};     // what else is there to see; of a bitmap, or a page, nothing
    uint32_t page = 0;          // of its file, from 1; 0: that has no pages
    std::wstring damage{};      // what is missing of the picture, for the user; empty: it is whole
    // Of the last plug-in that took it and failed, when nobody did better; and why one that may
    // know it did not take it.
    std::optional<PluginFailure> failure{};
    std::optional<Search::Refusal> refusal{};
    bool isBrokenBitmap = false;  // a bitmap by its first bytes, and not to be read as one
    bool isStopped = false;
};

// Lets the picture know where it was read.
void TellOrigin(ReadResult& read, PictureOrigin origin);
// The same of an archive's member, given its bytes; `origin` lacks nothing else.
void TellOrigin(ReadResult& read, PictureOrigin origin, HLOCAL content);

// Reads a file that was looked at, in a picture's kind: a bitmap that cannot be read is offered to
// plug-ins, and a plug-in that takes the file and then fails makes room for the next that takes it.
// Nothing stays bound to a picture, whose file may change and whose plug-in may be freed; to an
// archive the plug-in that took it does.
ReadResult ReadPicture(const SourceFile& file, const ReadWatch& watch);

// The same for one of the pages of its frames, from 0. The first one is the picture itself.
ReadResult ReadPage(const SourceFile& file, uint32_t page, const ReadWatch& watch);

// The same for a block. `name` tells where it comes from. An archive plug-in that takes it has read
// nothing of it: picture plug-ins may still know better.
ReadResult ReadPicture(HLOCAL block, const std::wstring& name, const ReadWatch& watch,
                       uint32_t page = 0);

}  // namespace tessary
