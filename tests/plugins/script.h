// The directives that tell a test plug-in what to do wrong: lines of text, as README.md lists them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessary::test {

class Script {
  public:
    // Takes the lines of `text` up to the first empty one or NUL; the number of bytes they take.
    size_t Add(std::string_view text);

    const std::vector<std::string>& Lines() const { return lines_; }

    // "fixed" for the line "fixed".
    bool Has(std::string_view line) const;

    // T for the line "<name>:T".
    std::optional<std::string> Text(const std::string& name) const;

    // The same as a number; the lowest 32 bits of it.
    std::optional<int> Number(const std::string& name) const;

    // K for each of the lines "<verb>:K:<function>".
    std::vector<std::string> Kinds(const std::string& verb, const std::string& function) const;

  private:
    std::vector<std::string> lines_;
};

// The script beside the DLL, "<path of the DLL>.script".
const Script& PluginScript();
void ReadPluginScript(void* module);

}  // namespace tessary::test
