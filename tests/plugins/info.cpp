// GetPluginInfo, IsSupported, ConfigurationDlg and GetLastCondition of the test plug-ins.
#include <algorithm>
#include <cstring>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/function.h"
#include "tests/plugins/misdeeds.h"
#include "tests/plugins/source.h"

namespace tessary::test {
namespace {

std::string OwnText(int number) {
    const bool picture = IsExported("GetPicture");
    const char* const texts[] = {picture ? "00IN" : "00AM", "Test plug-in",
                                 picture ? "*.TST" : "*.TSA", "Test files"};
    return number >= 0 && number < 4 ? texts[number] : "";
}

std::string TextOf(const Script& script, int number) {
    const auto setUp = script.Text("set-up:" + std::to_string(number));
    if (setUp && CallCount("ConfigurationDlg") > 0) return *setUp;
    if (const auto text = script.Text("info:" + std::to_string(number))) return *text;
    if (script.Has("info-none")) return "";
    if (const auto count = script.Number("patterns"); count && number >= 2)
        return number / 2 <= *count ? "*.T" + std::to_string(number) : "";
    return script.Has("info-endless") ? OwnText(number % 4) : OwnText(number);
}

int WriteText(const Script& script, const std::string& text, char* buffer, int size) {
    if (script.Has("info-fill")) {
        for (int i = 0; i < size; ++i)
            buffer[i] = "*.tst;"[i % 6];
        return size;
    }
    if (text.empty() && script.Has("info-none")) return 0;
    const int length = std::min(static_cast<int>(text.size()), size - 1);
    std::memcpy(buffer, text.data(), static_cast<size_t>(length));
    buffer[length] = '\0';
    std::memset(buffer + size, 'x', static_cast<size_t>(script.Number("info-overrun").value_or(0)));
    const bool countsNul = script.Has("info-counts-nul") && length > 0;
    return length + script.Number("info-longer").value_or(0) + (countsNul ? 1 : 0);
}

bool IsOurs(const std::string& content) {
    return (IsExported("GetPicture") && content.starts_with("TST ")) ||
           (IsExported("GetArchiveInfo") && content.starts_with("TSA\n"));
}

int SumOf(const char* block, int length) {
    int sum = 0;
    for (int i = 0; i < length; ++i)
        sum += static_cast<const volatile char*>(block)[i];
    return sum;
}

// True when nobody else has the file open.
bool CanOpenExclusively(const char* fileName) {
    const HANDLE file = CreateFileA(fileName, GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

// A file handle has no high word, an address has.
bool IsBlock(const void* header) {
    return reinterpret_cast<ULONG_PTR>(header) > 0xFFFF;
}

}  // namespace
}  // namespace tessary::test

using namespace tessary;
using namespace tessary::test;

extern "C" int __stdcall GetPluginInfo(int number, char* buffer, int size) {
    return Run({"GetPluginInfo", __builtin_dwarf_cfa(), 3, {}}, [&](const Script& script) {
        return WriteText(script, TextOf(script, number), buffer, size);
    });
}

extern "C" int __stdcall IsSupported(const char* fileName, const char* header) {
    const std::string content = IsBlock(header) ? std::string(header, susie::kHeaderBlockSize)
                                                : ReadFileContent(fileName, 0);
    return Run({"IsSupported", __builtin_dwarf_cfa(), 2, content}, [&](const Script& script) {
        if (SumOf(header + susie::kHeaderBlockSize, script.Number("read-beyond").value_or(0)))
            return 3;
        if (script.Has("exclusive") && !CanOpenExclusively(fileName)) return 0;
        if (script.Has("needs-plain-process") && !IsPlainProcess()) return 0;
        if (script.Has("accept-all")) return 1;
        return IsOurs(content) ? 1 : 0;
    });
}

extern "C" int __stdcall ConfigurationDlg(HWND, int) {
    return Run({"ConfigurationDlg", __builtin_dwarf_cfa(), 2, {}}, [](const Script&) { return 0; });
}

extern "C" int __stdcall GetLastCondition(wchar_t* text, int length) {
    return Run({"GetLastCondition", __builtin_dwarf_cfa(), 2}, [&](const Script&) {
        const std::string& told = LastCondition();
        const size_t colon = std::min(told.find(':'), told.size());
        if (told.empty() || text == nullptr) return 0;
        std::fill_n(text, length, L'x');  // the NUL is the text's own, if it has one
        const std::string words = told.substr(std::min(colon + 1, told.size()));
        if (words != "endless") {
            const size_t count = std::min(words.size(), static_cast<size_t>(length) - 1);
            std::copy_n(words.begin(), count, text);
            text[count] = L'\0';
        }
        return std::stoi(told);
    });
}
