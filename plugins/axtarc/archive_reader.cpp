#include "plugins/axtarc/archive_reader.h"

#include <array>

#include "plugins/axtarc/archive_format.h"
#include "plugins/axtarc/lzh_archive.h"
#include "plugins/axtarc/stream_archive.h"
#include "plugins/axtarc/zip_archive.h"

namespace tessary::unpack {

using codec::Result;

Result OpenArchive(dib::ByteSource& source, const std::string& fileName,
                   std::unique_ptr<ArchiveReader>& reader) {
    std::array<uint8_t, 512> header{};
    const auto count = source.ReadAt(0, header);
    if (!count) return Result::kReadError;
    const Format format = DetectFormat(std::span(header).first(*count));
    switch (format) {
        case Format::kNone:
            return Result::kUnknownFormat;
        case Format::kLzh:
            return LzhArchive::Open(source, reader);
        case Format::kZip:
            // Without a directory at its end (cut short, say) it is read from front to back.
            if (const Result result = ZipArchive::Open(source, reader);
                result != Result::kBrokenData) {
                return result;
            }
            [[fallthrough]];
        default:
            return StreamArchive::Open(source, format, fileName, reader);
    }
}

}  // namespace tessary::unpack
