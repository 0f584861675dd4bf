// Archives that are read from front to back: 7z, RAR, CAB, tar, compressed files, and ZIP archives
// that have lost their directory.
#pragma once

#include "plugins/axtessarc/archive_reader.h"
#include "plugins/axtessarc/stream_reader.h"

namespace tessary::unpack {

// Keeps its place behind the last extracted member, so that stepping forward goes on from there.
class StreamArchive final : public ArchiveReader {
  public:
    // As OpenArchive. Fails only when not one member can be read; `isEncrypted` is set when that is
    // because the list is encrypted.
    static codec::Result Open(dib::ByteSource& source, Format format, const std::string& fileName,
                              std::unique_ptr<ArchiveReader>& reader, bool& isEncrypted);

  protected:
    codec::Result Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) override;

  private:
    StreamArchive(dib::ByteSource& source, Format format) : source_(source), format_(format) {}

    codec::Result ReadList(const std::string& fileName, bool& isEncrypted);
    codec::Result ExtractEntry(std::unique_ptr<StreamReader>& reader, size_t index,
                               files::ByteSink& sink, codec::Progress& progress);

    dib::ByteSource& source_;
    Format format_;
    std::vector<size_t> entries_;  // of each member: its number among all entries
    std::unique_ptr<StreamReader> reader_;
    size_t nextEntry_ = 0;  // what `reader_` reads next
};

}  // namespace tessary::unpack
