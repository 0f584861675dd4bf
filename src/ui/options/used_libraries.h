// What the program is made of, beside its own code.
#pragma once

#include <span>
#include <string>

namespace tessary {

// Names and texts as the version window shows them. The first is the program itself.
struct UsedLibrary {
    const wchar_t* name;
    const wchar_t* version;
    const wchar_t* licence;
    const wchar_t* notice;
};
std::span<const UsedLibrary> UsedLibraries();

// Word size and compiler of this build; the same for the same sources and compiler.
std::wstring BuildText();

}  // namespace tessary
