// Archives for the tests: by libarchive's writers where there are any, else stored byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessary::unpack::test {

using Bytes = std::vector<uint8_t>;

struct File {
    std::string name;
    std::string content;
};

enum class Kind {
    kZip,
    kZipStored,
    kSevenZip,
    kTar,
    kTarGzip,
    kTarBzip2,
    kTarXz,
    kCab,
    kRar,
    kRar5,
    kLzhLevel0,
    kLzhLevel1,
    kLzhLevel2,
};

constexpr int64_t kFileTime = 1'000'000'000;  // of every member

// What libarchive writes begins with an entry for "folder/".
Bytes MakeArchive(Kind kind, const std::vector<File>& files);

// Puts right the sums of headers that were changed.
void SumTarHeaders(Bytes& tar);

// A compressed stream; one behind the other they make a stream, too.
Bytes Gzip(const Bytes& bytes);

// One LZH member with a header of that level and packed data as they are; a name with folders is
// split at `/` from level 1 on.
Bytes LzhMember(int level, std::string_view method, const File& file, std::string_view packed);

// "abracadabra, abracadabra", as LHarc 1 packs it, with its adaptive Huffman codes.
File LharcFile();
std::string LharcPacked();

// Text that packs well but not to nothing.
std::string SomeText(size_t size, unsigned seed);

}  // namespace tessary::unpack::test
