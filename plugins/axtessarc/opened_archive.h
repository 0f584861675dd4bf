// The archive that a call is about. The last one is remembered between calls, so that a host that
// goes through the members finds the list read and the place kept; its file is closed meanwhile.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>

#include "plugins/axtessarc/archive_reader.h"

namespace tessary::unpack {

struct RememberedArchive;

class OpenedArchive {
  public:
    OpenedArchive();
    OpenedArchive(const OpenedArchive&) = delete;
    OpenedArchive& operator=(const OpenedArchive&) = delete;
    ~OpenedArchive();

    // Opens what `source`, `length` and `flag` of a Susie call mean (see OpenSource). It is the
    // remembered one if it is the same still, by name, size, time and contents.
    codec::Result Open(const char* source, LONG_PTR length, uint32_t flag);

    // The same for GetFile, which is not told the length: it is that of the last Open of the same
    // file or block, which the host may have moved since. kInternalError for a block that was not
    // opened before or has become shorter.
    codec::Result OpenListed(const char* source, uint32_t flag);

    // What there is to tell of the list, or of why there is none.
    codec::Remark Told() const;

    // The rest may be called only behind a success of Open.
    ArchiveReader& Reader();

    // The first member of this listed name, with or without its folder; null when there is none.
    std::optional<size_t> Find(const char* name);

    // Lets the next call find this archive again. To be called when its work has ended in order.
    void Remember();

  private:
    std::unique_ptr<dib::ByteSource> bytes_;
    std::unique_ptr<RememberedArchive> archive_;
};

}  // namespace tessary::unpack
