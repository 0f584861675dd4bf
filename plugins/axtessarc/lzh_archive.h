// LZH archives (LHA, LHarc, LArc) on lhasa's decoders, which know methods that libarchive lacks.
// Each member is reached directly. What PMarc has compressed is listed, but not unpacked.
#pragma once

#include "plugins/axtessarc/archive_reader.h"

namespace tessary::unpack {

class LzhArchive final : public ArchiveReader {
  public:
    // As OpenArchive. Fails only when not one header can be read.
    static codec::Result Open(dib::ByteSource& source, std::unique_ptr<ArchiveReader>& reader);

  protected:
    codec::Result Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) override;

  private:
    // What it takes to unpack one member.
    struct Data {
        uint64_t offset;
        uint16_t crc;  // CRC-16 of the contents
    };

    explicit LzhArchive(dib::ByteSource& source) : source_(source) {}
    codec::Result ReadList();

    dib::ByteSource& source_;
    std::vector<Data> data_;
};

}  // namespace tessary::unpack
