#include "helpers/susiectl/input_file.h"

#include <string_view>

namespace tessary::susiectl {

std::wstring FromAnsi(const char* text) {
    if (!text) return {};
    const std::string_view bytes(text);
    std::wstring wide(bytes.size(), L'\0');  // never more characters than bytes
    const int length = MultiByteToWideChar(CP_ACP, 0, bytes.data(), static_cast<int>(bytes.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(length));
    return wide;
}

std::wstring FullPath(const std::wstring& path) {
    std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.size() < MAX_PATH || full.starts_with(LR"(\\?\)")) return full;
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC\)" + full.substr(2) : LR"(\\?\)" + full;
}

InputFile::InputFile(const std::wstring& path)
    : file_(CreateFileW(FullPath(path).c_str(), GENERIC_READ,
                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                        OPEN_EXISTING, 0, nullptr)) {}

InputFile::~InputFile() {
    if (IsOpen()) CloseHandle(file_);
}

size_t InputFile::Read(uint64_t offset, std::span<std::byte> block) const {
    LARGE_INTEGER position;
    position.QuadPart = static_cast<LONGLONG>(offset);
    DWORD count = 0;
    if (!SetFilePointerEx(file_, position, nullptr, FILE_BEGIN) ||
        !ReadFile(file_, block.data(), static_cast<DWORD>(block.size()), &count, nullptr))
        return 0;
    return count;
}

}  // namespace tessary::susiectl
