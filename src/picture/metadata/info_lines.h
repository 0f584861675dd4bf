// What is known of a picture, in words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "helpers/metadata/metadata_field.h"
#include "picture/metadata/picture_origin.h"

namespace tessary {

struct InfoLine {
    std::wstring label;
    std::wstring value;

    bool operator==(const InfoLine&) const = default;
};

// What the program knows by itself. `plugin`: the name of what has read the picture; `damage`: what
// is missing of it.
std::vector<InfoLine> PictureLines(const Picture& picture, const std::wstring& plugin,
                                   const std::wstring& damage);

// What the file says.
std::vector<InfoLine> MetadataLines(const metadata::Fields& fields);

// Text of a file as one line: UTF-8 or Shift_JIS, without what could be no letter of it.
std::wstring MetadataText(std::string_view text);

}  // namespace tessary
