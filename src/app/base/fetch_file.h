// Bringing a file here that lies elsewhere (distant_file.h).
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessary {

// Reads the file once to its end, on a thread of its own, so that its content is on this disk then.
// `goesOn` is asked many times a second, with how far it is (`total` is 0 while nobody knows), and
// may let messages run; false gives the file up, and what of it cannot be broken off is left
// behind. The system's error, 0 for success; nothing when it was given up.
std::optional<unsigned long> FetchFile(const std::wstring& path,
                                       const std::function<bool(int done, int total)>& goesOn);

// Whether an error tells that a file's content could not be fetched from where it lies.
bool IsFetchError(unsigned long error);

// What such an error means, or any other one that ended the fetching: a sentence for the user.
std::wstring FetchErrorText(unsigned long error);

}  // namespace tessary
