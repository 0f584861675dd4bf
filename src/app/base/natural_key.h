// The order in which people look for names.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace tessary {

// Makes, of names, bytes that compare as the names are to be ordered: letters as the user's
// language orders them, whatever their case, width, accents and kind of kana, and runs of digits by
// their value. What many names have in common is asked of the system once: the object is made for
// one sorting.
class NaturalKeys {
  public:
    // Of a file's or a folder's name.
    std::string OfName(std::wstring_view name);
    // Of a folder's path, so that its own files stand before those of the folders in it.
    std::string OfFolder(std::wstring_view folder);

  private:
    const std::string& WeightsOf(std::wstring_view letters);
    void AppendNumber(std::wstring_view digits, std::string& key);

    std::unordered_map<std::wstring, std::string> weights_;
};

}  // namespace tessary
