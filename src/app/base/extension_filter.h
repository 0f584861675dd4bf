// Choosing files by their extensions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessary {

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
