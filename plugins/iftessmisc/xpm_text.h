// The strings that an XPM file is made of, and the colours in them. Format: XPM Manual, version 3,
// and the plain lines of version 2.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "helpers/dib/bitmap_header.h"
#include "plugins/iftessmisc/byte_input.h"

namespace tessary::misc {

class XpmText {
  public:
    // `isPlain`: each line is a string, as version 2 has it; else they are those of a C program.
    XpmText(dib::ByteSource& source, bool isPlain) : input_(source), isPlain_(isPlain) {}

    // The next string, of `most` bytes at most; what is longer is cut. False at the end.
    bool Next(std::string& text, size_t most);

  private:
    bool NextLine(std::string& text, size_t most);
    void SkipComment();

    ByteInput input_;
    bool isPlain_;
};

struct XpmColor {
    dib::PaletteEntry color{};
    uint8_t alpha = 0xFF;
};

// What the text behind a colour's characters says: the colour for colour screens, else for grey
// ones, else for black and white. Null for names that nobody knows.
std::optional<XpmColor> ReadXpmColor(std::string_view text);

}  // namespace tessary::misc
