#include "plugins/axtessarc/lzh_header.h"

#include <lhasa/lhasa.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <span>
#include <vector>

#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/contained_read.h"
#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/name_encoding.h"

namespace tessary::unpack {
namespace {

using Bytes = std::span<const uint8_t>;

// Extended headers with names, in the code page of the packing system and in UTF-16.
constexpr uint8_t kName = 0x01, kFolder = 0x02;
constexpr uint8_t kWideName = 0x44, kWideFolder = 0x45;
constexpr uint8_t kFolderSeparator = 0xFF;

// The place from which lhasa reads; it looks for the first header by itself.
struct Input {
    dib::ByteSource* source;
    uint64_t position;
};

int OnRead(void* handle, void* out, size_t count) {
    auto& input = *static_cast<Input*>(handle);
    const auto got =
        ReadContained(*input.source, input.position, {static_cast<uint8_t*>(out), count});
    if (!got) return -1;
    input.position += *got;
    return static_cast<int>(*got);
}

struct FreeStream {
    void operator()(LHAInputStream* stream) const { lha_input_stream_free(stream); }
};
struct FreeReader {
    void operator()(LHAReader* reader) const { lha_reader_free(reader); }
};

// The names of an extended header, or of none.
struct Names {
    std::string name, folder;
    std::vector<uint16_t> wideName, wideFolder;
};

std::vector<uint16_t> Units(Bytes data) {
    std::vector<uint16_t> units;
    for (size_t i = 0; i + 2 <= data.size(); i += 2) {
        const uint16_t unit = Read16(data, i);
        units.push_back(unit == 0xFFFF ? uint16_t{'/'} : unit);
    }
    return units;
}

// Extended headers follow one another: each begins with its kind and ends with the size of the
// next. `at` is where the size of the first one stands.
void TakeExtended(Bytes raw, size_t at, size_t sizeBytes, Names& names) {
    while (at + sizeBytes <= raw.size()) {
        const auto size = static_cast<size_t>(ReadNumber(raw, at, sizeBytes));
        const size_t start = at + sizeBytes;
        if (size <= sizeBytes || size > raw.size() - start) return;
        const Bytes data = raw.subspan(start + 1, size - sizeBytes - 1);
        const std::string text(data.begin(), data.end());
        switch (raw[start]) {
            case kName:
                names.name = text;
                break;
            case kFolder:
                names.folder = text;
                std::replace(names.folder.begin(), names.folder.end(),
                             static_cast<char>(kFolderSeparator), '/');
                break;
            case kWideName:
                names.wideName = Units(data);
                break;
            case kWideFolder:
                names.wideFolder = Units(data);
                break;
            default:
                break;
        }
        at += size;
    }
}

// lhasa's own names would not do: it takes the second half of a double-byte character for a
// separator, and makes names lower case.
void TakeName(Bytes raw, unsigned level, Member& member) {
    Names names;
    if (level <= 1) {
        const auto base = raw.subspan(22, raw[21]);
        names.name.assign(base.begin(), std::find(base.begin(), base.end(), 0));
    }
    if (level == 1) TakeExtended(raw, raw[0], 2, names);
    if (level == 2) TakeExtended(raw, 24, 2, names);
    if (level == 3) TakeExtended(raw, 28, 4, names);

    if (!names.wideName.empty()) {
        std::vector<uint16_t> wide = names.wideFolder;
        if (!wide.empty() && wide.back() != '/') wide.push_back('/');
        wide.insert(wide.end(), names.wideName.begin(), names.wideName.end());
        member.name = Utf8FromUtf16(wide);
        member.nameIsUtf8 = true;
        return;
    }
    if (!names.folder.empty() && names.folder.back() != '/') names.folder += '/';
    member.name = names.folder + names.name;
    member.nameIsUtf8 = LooksLikeUtf8(member.name);
}

}  // namespace

std::optional<LzhHeader> ReadLzhHeader(dib::ByteSource& source, uint64_t offset) {
    // lhasa would look for a header behind whatever stands here.
    std::array<uint8_t, 22> start{};
    if (source.ReadAt(offset, start) != start.size() || DetectFormat(start) != Format::kLzh) {
        return std::nullopt;
    }
    Input input{&source, offset};
    static const LHAInputStreamType kCallbacks{OnRead, nullptr, nullptr};
    const std::unique_ptr<LHAInputStream, FreeStream> stream(
        lha_input_stream_new(&kCallbacks, &input));
    if (stream == nullptr) throw std::bad_alloc();
    const std::unique_ptr<LHAReader, FreeReader> reader(lha_reader_new(stream.get()));
    if (reader == nullptr) throw std::bad_alloc();
    const LHAFileHeader* found = lha_reader_next_file(reader.get());
    // It looks on where it does not know a method; what it finds there is another member's.
    if (found == nullptr || !std::equal(start.begin(), start.end(), found->raw_data)) {
        return std::nullopt;
    }

    LzhHeader header{found->raw_data_len, false, found->crc, {}};
    header.isFile = std::string_view(found->compress_method) != LHA_COMPRESS_TYPE_DIR;
    header.member.method = found->compress_method;
    header.member.compressedSize = found->compressed_length;
    header.member.size = found->length;
    header.member.time = found->timestamp;
    TakeName({found->raw_data, found->raw_data_len}, found->header_level, header.member);
    return header;
}

}  // namespace tessary::unpack
