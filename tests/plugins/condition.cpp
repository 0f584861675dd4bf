// GetLastCondition of the test plug-ins.
#include <algorithm>

#include "tests/plugins/function.h"

using namespace tessary::test;

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
