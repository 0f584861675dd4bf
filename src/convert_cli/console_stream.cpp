#include "convert_cli/console_stream.h"

#include <algorithm>
#include <string>

namespace tessary {
namespace {

constexpr size_t kLongestConsoleWrite = 8000;  // characters in one call to the system

std::string Encoded(std::wstring_view text, UINT codePage) {
    const auto length = static_cast<int>(text.size());
    const int size =
        WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}  // namespace

ConsoleStream::ConsoleStream(DWORD stream, UINT codePage)
    : stream_(GetStdHandle(stream)), codePage_(codePage) {
    DWORD mode = 0;
    isConsole_ = GetConsoleMode(stream_, &mode) != FALSE;
}

void ConsoleStream::Write(std::wstring_view text) {
    DWORD written = 0;
    if (!isConsole_) {
        const std::string bytes = Encoded(text, codePage_);
        WriteFile(stream_, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        return;
    }
    while (!text.empty()) {
        const size_t count = std::min(text.size(), kLongestConsoleWrite);
        WriteConsoleW(stream_, text.data(), static_cast<DWORD>(count), &written, nullptr);
        text.remove_prefix(count);
    }
}

void ConsoleStream::WriteLine(std::wstring_view line) {
    std::wstring whole(line);
    whole += L"\r\n";
    Write(whole);
}

}  // namespace tessary
