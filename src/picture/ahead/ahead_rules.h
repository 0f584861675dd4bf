// Where and when reading ahead does more good than harm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tessary {

// Whether a file may be opened before anybody asks for it: it is on a fixed disk of this computer,
// and nothing has to be fetched. From any thread.
bool MayBeReadAhead(const std::wstring& path);

// The same for small pictures, which the user has asked for: other drives of this computer will do.
bool MayBeShownSmall(const std::wstring& path);

// Whether the computer saves its battery: then nothing is read ahead.
bool SavesBattery();

// How many threads do it: as many as the machine has processors, up to four.
int ReadingThreads();

// How many bytes of pictures to keep: so many megabytes, or for 0 a quarter of the free memory; but
// no more than this process has room for beside the picture that is shown.
size_t AheadBudget(int32_t megabytes = 0);

}  // namespace tessary
