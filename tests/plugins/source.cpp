#include "tests/plugins/source.h"

#include <cstring>

#include "helpers/susiectl/susie_interface.h"

namespace tessary::test {

std::string ReadFileContent(const std::string& path, LONG_PTR offset) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                              0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::string content(GetFileSize(file, nullptr), '\0');
    DWORD count = 0;
    ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &count, nullptr);
    CloseHandle(file);
    content.resize(count);
    return content.substr(std::min(static_cast<size_t>(offset), content.size()));
}

std::string ReadSource(const char* source, LONG_PTR length, uint32_t flag) {
    if ((flag & 7) == susie::kSourceFile) return ReadFileContent(source, length);
    return {source, static_cast<size_t>(length)};
}

HLOCAL MakeBlock(const std::string& bytes, UINT kind) {
    HLOCAL block = LocalAlloc(kind, bytes.size());
    if (block) std::memcpy(LocalLock(block), bytes.data(), bytes.size());
    if (block) LocalUnlock(block);
    return block;
}

}  // namespace tessary::test
