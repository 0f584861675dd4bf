// The formats that the plug-in reads.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"
#include "plugins/iftessmisc/file_page.h"
#include "plugins/iftessmisc/picture_reader.h"

namespace tessary::misc {

struct Format {
    const wchar_t* name;  // as the user knows it
    // Whether the first bytes of a file, at most 64, are of this format.
    bool (*isSupported)(std::span<const uint8_t> header);
    // Reads the head of a picture. `source` must outlive the reader, which is set on success only;
    // reasons of a failure are told.
    codec::Result (*open)(dib::ByteSource& source, codec::Progress& progress,
                          std::unique_ptr<PictureReader>& reader);
    // Where the pictures of a file are, `most` at most; null for formats that hold one.
    std::vector<Page> (*pages)(dib::ByteSource& source, size_t most) = nullptr;
};

// Those with a signature first: the others are told by what is likely.
std::span<const Format> Formats();

// For pictures that are what they say, but of a kind that is not read; `text` is Japanese.
inline codec::Result NotRead(codec::Progress& progress, const wchar_t* text) {
    progress.Tell(codec::Condition::kKindNotRead, text);
    return codec::Result::kUnknownFormat;
}

// One function set of each format.
extern const Format kTga, kNetpbm, kPsd, kPcx, kDcx, kSgi, kQoi, kFarbfeld, kXbm, kXpm, kRadiance,
    kMag;

}  // namespace tessary::misc
