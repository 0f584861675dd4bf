// RAR archives for the tests, byte by byte: no free program writes them.
#pragma once

#include "tests/plugins_bundled/made_archives.h"

namespace tessary::unpack::test {

// RAR 4: flags of the main header, and of every file's.
constexpr uint16_t kRarVolume = 0x01, kRarEncryptedHeaders = 0x80;
constexpr uint16_t kRarSplitAfter = 0x02, kRarEncryptedFile = 0x04;

Bytes MakeRar(const std::vector<File>& files, uint16_t mainFlags = 0, uint16_t fileFlags = 0);

// RAR 5: what the main header says, and whether all files are said to be encrypted.
constexpr uint8_t kRar5Volume = 0x01;

Bytes MakeRar5(const std::vector<File>& files, uint8_t mainFlags = 0, bool isEncrypted = false);
Bytes MakeRar5WithEncryptedHeaders();

// One member, compressed as RAR 3 does: literals first, then matches of the longest kind, more
// than the window holds. Of the distances' low parts some are said to repeat, up to a new table.
Bytes MakeCompressedRar(File& file);

}  // namespace tessary::unpack::test
