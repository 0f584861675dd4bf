#include "convert_cli/console_stream.h"

#include <string>

namespace tessary {
namespace {

constexpr size_t kLongestConsoleWrite = 8000;  // characters in one call to the system

// Likenesses of missing characters would make other names of names; question marks are in none.
std::string Encoded(std::wstring_view text, UINT codePage) {
    const auto length = static_cast<int>(text.size());
    for (const DWORD flags : {DWORD{WC_NO_BEST_FIT_CHARS}, DWORD{0}}) {
        const int size =
            WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, nullptr, nullptr);
        if (size == 0) continue;  // UTF-8 and the like take no flag
        std::string bytes(static_cast<size_t>(size), '\0');
        WideCharToMultiByte(codePage, flags, text.data(), length, bytes.data(), size, nullptr,
                            nullptr);
        return bytes;
    }
    return {};
}

// How much of a long text goes to the console at once: no half of a pair.
size_t WholeCharacters(std::wstring_view text) {
    if (text.size() <= kLongestConsoleWrite) return text.size();
    return kLongestConsoleWrite - (IS_HIGH_SURROGATE(text[kLongestConsoleWrite - 1]) ? 1 : 0);
}

}  // namespace

UINT ConsoleCodePage() {
    const UINT codePage = GetConsoleOutputCP();
    return codePage != 0 ? codePage : CP_UTF8;
}

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
        const size_t count = WholeCharacters(text);
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
