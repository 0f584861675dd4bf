#include "plugin/crashed_calls.h"

#include <optional>

#include "app/base/hash.h"
#include "app/base/text.h"
#include "plugin/file_stamp.h"

namespace tessary {
namespace {

std::wstring OutlineOf(std::wstring_view operation, const PluginSource& source) {
    std::wstring outline(operation);
    outline.append(L"|").append(std::to_wstring(source.bytes.size())).append(L"|");
    return source.isFile ? outline + FromAnsi(source.name) : outline;
}

// Nothing for a file that is not there.
std::optional<std::pair<uint64_t, uint64_t>> VersionOf(const PluginSource& source) {
    if (!source.isFile) {
        const std::string_view bytes(reinterpret_cast<const char*>(source.bytes.data()),
                                     source.bytes.size());
        return std::pair{uint64_t{bytes.size()}, HashOf(bytes)};
    }
    const std::optional<FileStamp> stamp = StampOf(FromAnsi(source.name));
    if (!stamp) return std::nullopt;
    return std::pair{stamp->size, stamp->changed};
}

}  // namespace

void CrashedCalls::Note(std::wstring_view operation, const PluginSource& source) {
    const auto version = VersionOf(source);
    if (version) calls_[OutlineOf(operation, source)].insert(*version);
}

bool CrashedCalls::Hold(std::wstring_view operation, const PluginSource& source) const {
    if (calls_.empty()) return false;
    const auto found = calls_.find(OutlineOf(operation, source));
    if (found == calls_.end()) return false;
    const auto version = VersionOf(source);
    return version && found->second.contains(*version);
}

}  // namespace tessary
