// What a plug-in function is asked to open.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace tessary::test {

// All bytes of a file from `offset` on; none when it cannot be read.
std::string ReadFileContent(const std::string& path, LONG_PTR offset);

// The bytes that the interface's three arguments stand for.
std::string ReadSource(const char* source, LONG_PTR length, uint32_t flag);

// A local-memory block with these bytes.
HLOCAL MakeBlock(const std::string& bytes, UINT kind = LMEM_MOVEABLE);

}  // namespace tessary::test
