#include "plugins/axtessarc/lzh_archive.h"

#include <lhasa/lhasa.h>

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "plugins/axtessarc/contained_read.h"
#include "plugins/axtessarc/lzh_header.h"

namespace tessary::unpack {
namespace {

using codec::Result;

constexpr size_t kInputSize = 16 * 1024;
constexpr size_t kOutputSize = 64 * 1024;

// Forged data leads their decoders behind the ends of the tables that they share.
constexpr std::array<std::string_view, 2> kUnsafeMethods{"-pm1-", "-pm2-"};

struct FreeDecoder {
    void operator()(LHADecoder* decoder) const { lha_decoder_free(decoder); }
};

// The packed bytes of one member. Decoders fetch them a few at a time.
struct Packed {
    dib::ByteSource* source;
    uint64_t position;
    uint64_t left;  // not yet fetched into `ahead`
    std::array<uint8_t, kInputSize> block;
    std::span<const uint8_t> ahead;
    bool readFailed = false;

    bool Fill() {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(block.size(), left));
        const auto got = ReadContained(*source, position, std::span(block).first(wanted));
        readFailed = readFailed || !got;
        ahead = std::span(block).first(got.value_or(0));
        position += ahead.size();
        left -= ahead.size();
        return !ahead.empty();
    }
};

// Fewer bytes than asked for only at the end: decoders take what they get for all of it.
size_t OnRead(void* out, size_t count, void* handle) {
    auto& packed = *static_cast<Packed*>(handle);
    auto* to = static_cast<uint8_t*>(out);
    size_t left = count;
    while (left != 0 && (!packed.ahead.empty() || packed.Fill())) {
        const size_t given = std::min(left, packed.ahead.size());
        to = std::copy_n(packed.ahead.begin(), given, to);
        packed.ahead = packed.ahead.subspan(given);
        left -= given;
    }
    return count - left;
}

}  // namespace

Result LzhArchive::Open(dib::ByteSource& source, std::unique_ptr<ArchiveReader>& reader) {
    std::unique_ptr<LzhArchive> archive(new LzhArchive(source));
    const Result result = archive->ReadList();
    if (result == Result::kSuccess) reader = std::move(archive);
    return result;
}

Result LzhArchive::ReadList() {
    uint64_t offset = 0;
    while (auto header = ReadLzhHeader(source_, offset)) {
        const uint64_t dataOffset = offset + header->size;
        offset = dataOffset + header->member.compressedSize;
        if (!header->isFile) continue;
        data_.push_back({dataOffset, header->crc});
        members_.push_back(std::move(header->member));
    }
    return offset == 0 ? Result::kBrokenData : Result::kSuccess;
}

Result LzhArchive::Unpack(size_t index, files::ByteSink& sink, codec::Progress& progress) {
    Member& member = members_[index];
    const bool isUnsafe = std::ranges::count(kUnsafeMethods, member.method) != 0;
    LHADecoderType* const type = lha_decoder_for_name(member.method.data());
    if (type == nullptr || isUnsafe) return Result::kUnknownFormat;
    const auto packed = std::make_unique<Packed>();
    packed->source = &source_;
    packed->position = data_[index].offset;
    packed->left = member.compressedSize;
    const std::unique_ptr<LHADecoder, FreeDecoder> decoder(
        lha_decoder_new(type, OnRead, packed.get(), static_cast<size_t>(member.size)));
    if (decoder == nullptr) throw std::bad_alloc();

    std::vector<uint8_t> block(kOutputSize);
    for (uint64_t done = 0; done < member.size;) {
        const auto wanted =
            static_cast<size_t>(std::min<uint64_t>(block.size(), member.size - done));
        const size_t count = lha_decoder_read(decoder.get(), block.data(), wanted);
        if (packed->readFailed) return Result::kReadError;
        if (count == 0) return Result::kBrokenData;
        if (!sink.Write(std::span(block).first(count))) return Result::kInternalError;
        done += count;
        if (!progress.Report(std::min(done, member.size - 1), member.size)) return Result::kAborted;
    }
    return lha_decoder_get_crc(decoder.get()) == data_[index].crc ? Result::kSuccess
                                                                  : Result::kBrokenData;
}

}  // namespace tessary::unpack
