#include "plugin/crashed_calls.h"

#include <cstdint>
#include <optional>
#include <string_view>

#include "app/base/text.h"
#include "plugin/file_stamp.h"

namespace tessary {
namespace {

// FNV-1a.
uint64_t HashOf(std::string_view bytes) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : bytes)
        hash = (hash ^ static_cast<uint8_t>(byte)) * 0x100000001B3;
    return hash;
}

std::wstring Joined(const std::wstring& name, uint64_t size, uint64_t version) {
    return name + L'|' + std::to_wstring(size) + L'|' + std::to_wstring(version);
}

// Empty for what cannot be told from another.
std::wstring ContentOf(const SusieSource& source) {
    if (source.source == nullptr) return {};
    if (source.flag == susie::kSourceMemory) {
        const std::string_view bytes(source.source, static_cast<size_t>(source.length));
        return Joined({}, bytes.size(), HashOf(bytes));
    }
    const std::wstring path = FromAnsi(source.source);
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp) return {};
    return Joined(path + L'|' + std::to_wstring(source.length), stamp->size, stamp->changed);
}

std::wstring CallOf(std::wstring_view function, const std::wstring& content) {
    return std::wstring(function) + L'|' + content;
}

}  // namespace

void CrashedCalls::Note(std::wstring_view function, const SusieSource& source) {
    const std::wstring content = ContentOf(source);
    if (!content.empty()) calls_.insert(CallOf(function, content));
}

bool CrashedCalls::Hold(std::wstring_view function, const SusieSource& source) const {
    return !calls_.empty() && calls_.contains(CallOf(function, ContentOf(source)));
}

}  // namespace tessary
