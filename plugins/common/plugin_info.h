// The texts that a host asks for with GetPluginInfo.
#pragma once

namespace tessary::spi {

// Writes text `infoNumber` (0 the interface version as given, 1 the product, then patterns and
// description of each file type in turn) in the system's ANSI code page, cut between characters so
// that it fits `bufferLength` bytes with its NUL. Answers its bytes without the NUL, 0 when there
// is no such text or no room.
int WritePluginInfo(const char* interfaceVersion, int infoNumber, char* buffer, int bufferLength);

}  // namespace tessary::spi
