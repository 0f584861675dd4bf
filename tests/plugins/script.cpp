#include "tests/plugins/script.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "tests/plugins/source.h"

namespace tessary::test {
namespace {

Script pluginScript;

}  // namespace

size_t Script::Add(std::string_view text) {
    size_t begin = 0;
    while (begin < text.size() && text[begin] != '\n' && text[begin] != '\0') {
        const size_t end =
            std::min(text.find_first_of(std::string_view("\n\0", 2), begin), text.size());
        lines_.emplace_back(text.substr(begin, end - begin));
        begin = end + (end < text.size() && text[end] == '\n' ? 1 : 0);
    }
    return std::min(begin + 1, text.size());
}

bool Script::Has(std::string_view line) const {
    return std::ranges::count(lines_, line) > 0;
}

std::optional<std::string> Script::Text(const std::string& name) const {
    for (const std::string& line : lines_)
        if (line.starts_with(name + ":")) return line.substr(name.size() + 1);
    return std::nullopt;
}

std::optional<int> Script::Number(const std::string& name) const {
    const auto text = Text(name);
    if (!text) return std::nullopt;
    return static_cast<int>(std::strtoll(text->c_str(), nullptr, 0));
}

std::vector<std::string> Script::Kinds(const std::string& verb, const std::string& function) const {
    std::vector<std::string> kinds;
    for (const std::string& line : lines_)
        if (line.starts_with(verb + ":") && line.ends_with(":" + function))
            kinds.push_back(line.substr(verb.size() + 1, line.rfind(':') - verb.size() - 1));
    return kinds;
}

const Script& PluginScript() {
    return pluginScript;
}

void ReadPluginScript(void* module) {
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(static_cast<HMODULE>(module), path, MAX_PATH);
    pluginScript.Add(ReadFileContent(std::string(path, length) + ".script", 0));
}

}  // namespace tessary::test
