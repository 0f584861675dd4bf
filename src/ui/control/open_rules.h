// Rules of opening files: how texts are split and which names are wanted.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// Fills `pieces` with the texts between the occurrences of a character, empty ones too, and answers
// how many there are. A code of 256 or more divides nothing: 0 pieces.
int SplitText(std::wstring_view text, int characterCode, std::vector<std::wstring>& pieces);

// The files that a file dialog has chosen.
struct ChosenFiles {
    std::wstring folder;  // of the files, with a trailing backslash
    std::vector<std::wstring> paths;
};

// Takes a file dialog's answer apart: one path, or a folder and the names in it, divided by NULs.
// Nothing for an empty text.
ChosenFiles FilesOfDialog(std::wstring_view fileName);

// Which files are wanted by their extension, without regard to case.
class ExtensionFilter {
  public:
    // Extensions divided by single blanks; an empty text wants all files. Two blanks in a row stand
    // for no extension. A dot or `*.` before an extension is what people type and means nothing.
    explicit ExtensionFilter(std::wstring_view extensions);

    bool Wants(std::wstring_view fileName) const;

  private:
    std::vector<std::wstring> upperExtensions_;  // empty: all files
};

}  // namespace tessary
