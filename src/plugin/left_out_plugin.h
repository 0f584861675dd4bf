// Plug-in files that were found and are not among the plug-ins, and why.
#pragma once

#include <string>

namespace tessary {

enum class LeftOutReason {
    kNoDll,         // no DLL at all, or a damaged one
    kOtherMachine,  // a DLL of another architecture, as 64-bit ones are for the 32-bit program
    kNotLoadable,   // the system could not load it, or it crashed meanwhile
    kNoPlugin,      // a DLL without the functions of a Susie plug-in
    kBarred,        // it keeps ending the program
    kWaiting,       // it was not its turn yet: the next loading takes it
};

struct LeftOutPlugin {
    std::wstring path;
    LeftOutReason reason = LeftOutReason::kNotLoadable;
};

// Why the system does not load a file, as far as its headers tell: kNoDll, kOtherMachine or
// kNotLoadable.
LeftOutReason WhyNotLoaded(const std::wstring& path);

}  // namespace tessary
