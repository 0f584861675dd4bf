// libarchive over a ByteSource: one pass through an archive, from front to back.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <optional>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "helpers/files/byte_sink.h"
#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/gzip_stream.h"
#include "plugins/axtessarc/member.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"

namespace tessary::unpack {

// How a ZIP archive is read: by the directory at its end, or without one.
enum class ZipMode { kDirectory, kStream };

class StreamReader {
  public:
    // `source` must outlive the reader. Only the readers of `format` take part.
    StreamReader(dib::ByteSource& source, Format format, ZipMode zipMode = ZipMode::kStream);
    StreamReader(const StreamReader&) = delete;
    StreamReader& operator=(const StreamReader&) = delete;

    // The next entry of any kind, valid until the next call; null at the end of the archive and
    // where it cannot be read on, as Failure tells. Skipping what lies between can take as long as
    // unpacking it; `progress` may stop it.
    archive_entry* Next(codec::Progress& progress);

    // Writes the data of the current entry to `sink`. `member` tells the size to expect. Reading on
    // is possible only after success.
    codec::Result ReadData(const Member& member, files::ByteSink& sink, codec::Progress& progress);

    // Why the last call failed; kSuccess at the end of the archive.
    codec::Result Failure() const;

    // Behind the last entry: whether a check sum over all of the archive is wrong. Known of gzip.
    bool IsDoubtful();

    // Whether something encrypted has been met.
    bool HasEncryption() const;

    // The format's code of libarchive, known behind the first entry.
    int FormatCode() const { return archive_format(archive_.get()); }

  private:
    struct FreeArchive {
        void operator()(archive* a) const { archive_read_free(a); }
    };

    static la_ssize_t OnRead(archive* a, void* reader, const void** block);
    static la_int64_t OnSkip(archive* a, void* reader, la_int64_t count);
    static la_int64_t OnSeek(archive* a, void* reader, la_int64_t offset, int origin);

    std::optional<size_t> ReadSource(std::span<uint8_t> into) noexcept;
    // Whether the program that has packed the file is known by its first bytes.
    bool HasFilter() const;

    dib::ByteSource& source_;
    const Format format_;
    std::optional<GzipStream> gzip_;  // between the source and libarchive
    uint64_t position_ = 0;
    std::vector<uint8_t> block_;
    codec::Progress* progress_ = nullptr;  // of the call under way
    uint64_t done_ = 0;                    // bytes of the current entry
    uint64_t total_ = 1;
    int status_ = ARCHIVE_OK;
    bool isOpen_ = false;
    bool readFailed_ = false;
    bool aborted_ = false;
    std::unique_ptr<archive, FreeArchive> archive_;
};

}  // namespace tessary::unpack
