// ZIP archives with a directory: each member is reached directly.
#pragma once

#include "plugins/axtessarc/archive_reader.h"
#include "plugins/axtessarc/zip_directory.h"

namespace tessary::unpack {

class ZipArchive final : public ArchiveReader {
  public:
    // As OpenArchive. kBrokenData when there is no directory.
    static codec::Result Open(dib::ByteSource& source, std::unique_ptr<ArchiveReader>& reader);

  protected:
    codec::Result Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) override;

  private:
    ZipArchive(dib::ByteSource& source, ZipDirectory directory);
    bool HasNameOf(const ZipRecord& record) const;

    dib::ByteSource& source_;
    ZipDirectory directory_;  // its records are those of the members
};

}  // namespace tessary::unpack
