#include "plugin/crashed_calls.h"

#include <optional>

#include "app/base/hash.h"
#include "app/base/text.h"
#include "plugin/file_stamp.h"

namespace tessary {
namespace {

bool IsBlock(const SusieSource& source) {
    return source.flag == susie::kSourceMemory;
}

std::wstring OutlineOf(std::wstring_view function, const SusieSource& source) {
    std::wstring outline(function);
    outline.append(L"|").append(std::to_wstring(source.length)).append(L"|");
    return IsBlock(source) ? outline : outline + FromAnsi(source.source);
}

// Nothing for a file that is not there.
std::optional<std::pair<uint64_t, uint64_t>> VersionOf(const SusieSource& source) {
    if (IsBlock(source)) {
        const std::string_view bytes(source.source, static_cast<size_t>(source.length));
        return std::pair{uint64_t{bytes.size()}, HashOf(bytes)};
    }
    const std::optional<FileStamp> stamp = StampOf(FromAnsi(source.source));
    if (!stamp) return std::nullopt;
    return std::pair{stamp->size, stamp->changed};
}

}  // namespace

void CrashedCalls::Note(std::wstring_view function, const SusieSource& source) {
    if (source.source == nullptr) return;
    const auto version = VersionOf(source);
    if (version) calls_[OutlineOf(function, source)].insert(*version);
}

bool CrashedCalls::Hold(std::wstring_view function, const SusieSource& source) const {
    if (calls_.empty() || source.source == nullptr) return false;
    const auto found = calls_.find(OutlineOf(function, source));
    if (found == calls_.end()) return false;
    const auto version = VersionOf(source);
    return version && found->second.contains(*version);
}

}  // namespace tessary
