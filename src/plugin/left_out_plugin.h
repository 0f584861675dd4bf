// Plug-in files that were found and are not among the plug-ins, and folders that gave none, and
// why.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessary {

enum class LeftOutReason {
    kNoDll,         // no DLL at all, or a damaged one
    kOtherMachine,  // a DLL of another architecture, as 64-bit ones are for the 32-bit program
    kNotLoadable,   // the system could not load it
    kCrashed,       // it crashed while it was loaded
    kBlocked,       // the system or a virus scanner does not allow it to be loaded
    kNoPlugin,      // a DLL without the functions of a Susie plug-in
    kRenamed,       // one of ours under a former name, beside the one of today
    kBarred,        // it keeps ending the program, or its process, while it is loaded
    kGivenUp,       // it has ended too many processes (plugin_ends.h)
    kNoHost,        // the program of its process cannot be started
    kSkipped,       // the last run ended while it was loaded: the next loading tries it again
    kWaiting,       // it was not its turn yet: the next loading takes it
    kNoFolder,      // a whole plug-in folder that is not there
    kEmptyFolder,   // a whole plug-in folder in which no plug-in is
};

// Whether a whole folder is meant and no file.
constexpr bool IsFolderReason(LeftOutReason reason) {
    return reason == LeftOutReason::kNoFolder || reason == LeftOutReason::kEmptyFolder;
}

// Whether its failures have to be forgotten before it is loaded again.
constexpr bool IsBarredReason(LeftOutReason reason) {
    return reason == LeftOutReason::kBarred || reason == LeftOutReason::kGivenUp;
}

struct LeftOutPlugin {
    std::wstring path;  // of a folder with a trailing backslash
    LeftOutReason reason = LeftOutReason::kNotLoadable;
    uint32_t loadError = 0;  // of kNotLoadable and kBlocked: the system's, 0 when it told none
};

// Why the system does not load a file, as far as its error and the file's headers tell: kCrashed,
// kBlocked, kNoHost, kNoDll, kOtherMachine or kNotLoadable.
LeftOutReason WhyNotLoaded(const std::wstring& path, uint32_t loadError);

// Whether a plug-in is not to be loaded, for what is known of it: kBarred or kGivenUp. What the
// store does not tell bars nobody.
std::optional<LeftOutReason> WhyBarred(const std::wstring& path);

}  // namespace tessary
