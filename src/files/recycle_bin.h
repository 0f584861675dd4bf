// The system's recycle bin: putting files in, and taking them out again.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tessary {

// A file that lies in the bin.
struct BinnedFile {
    std::wstring path;     // that it had, full
    std::wstring binName;  // that the bin knows it by; empty where the system does not tell
};

enum class Binning {
    kDone,
    kGone,     // it was not there any more
    kNoBin,    // the bin does not take it: nothing was done
    kStopped,  // the user has said no to the system
    kFailed,   // it is still there
};

struct BinResult {
    Binning outcome = Binning::kFailed;
    DWORD error = ERROR_SUCCESS;  // the system's, of kFailed
    BinnedFile file{};            // of kDone
};

enum class Unbinning {
    kDone,
    kNotThere,  // the bin has no such file any more
    kOccupied,  // something of that name is where it was
    kFailed,    // it is still in the bin, or the system does not tell
};

// Whether a file may be put into the bin at all, by where it lies and how long its path is: drives
// that can be taken out and those of networks have none.
bool MayHaveBin(const std::wstring& path);

// Puts a file into the bin, whatever its attributes, and never deletes one instead. Blocks for as
// long as the system takes, which may also ask the user something.
BinResult PutIntoBin(const std::wstring& path);

// Puts it back where it was. Blocks as well, for long where the bin is full.
Unbinning TakeOutOfBin(const BinnedFile& file);

// What the system does, for tests to do in its place; empty functions give their part back.
struct BinCalls {
    std::function<bool(const std::wstring& path)> mayHave = {};
    std::function<BinResult(const std::wstring& path)> put = {};
    std::function<Unbinning(const BinnedFile& file)> takeOut = {};
};
void SetBinCalls(BinCalls calls);

}  // namespace tessary
