#include "tests/plugins_bundled/made_archives.h"

#include <archive.h>
#include <archive_entry.h>
#include <zlib.h>

#include <algorithm>
#include <numeric>

#include "plugins/axtessarc/little_endian.h"
#include "tests/plugins_bundled/made_rar.h"

namespace tessary::unpack::test {
namespace {

void Append(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void AppendEntry(archive* writer, const File& file, unsigned type) {
    archive_entry* const entry = archive_entry_new();
    archive_entry_copy_pathname(entry, file.name.c_str());
    archive_entry_set_filetype(entry, type);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_size(entry, static_cast<int64_t>(file.content.size()));
    archive_entry_set_mtime(entry, kFileTime, 0);
    archive_write_header(writer, entry);
    archive_write_data(writer, file.content.data(), file.content.size());
    archive_entry_free(entry);
}

la_ssize_t OnWrite(archive*, void* bytes, const void* data, size_t size) {
    Append(*static_cast<Bytes*>(bytes), {static_cast<const char*>(data), size});
    return static_cast<la_ssize_t>(size);
}

// On Windows the writer turns each `\` into `/`, second halves of Shift-JIS characters included.
void RestoreName(Bytes& bytes, const std::string& name) {
    const Bytes original(name.begin(), name.end());
    Bytes written = original;
    std::replace(written.begin(), written.end(), uint8_t{'\\'}, uint8_t{'/'});
    if (written == original) return;
    const auto find = [&](Bytes::iterator from) {
        return std::search(from, bytes.end(), written.begin(), written.end());
    };
    for (auto at = find(bytes.begin()); at != bytes.end(); at = find(at))
        std::copy(original.begin(), original.end(), at);
}

Bytes Write(Kind kind, const std::vector<File>& files) {
    archive* const writer = archive_write_new();
    if (kind == Kind::kZip || kind == Kind::kZipStored) {
        archive_write_set_format_zip(writer);
        archive_write_set_options(
            writer, kind == Kind::kZip ? "zip:compression=deflate" : "zip:compression=store");
    } else if (kind == Kind::kSevenZip) {
        archive_write_set_format_7zip(writer);
    } else {
        archive_write_set_format_ustar(writer);
    }
    if (kind == Kind::kTarGzip) archive_write_add_filter_gzip(writer);
    if (kind == Kind::kTarBzip2) archive_write_add_filter_bzip2(writer);
    if (kind == Kind::kTarXz) archive_write_add_filter_xz(writer);
    Bytes bytes;
    archive_write_set_bytes_in_last_block(writer, 1);
    archive_write_open(writer, &bytes, nullptr, OnWrite, nullptr);
    AppendEntry(writer, {"folder/", ""}, AE_IFDIR);
    for (const File& file : files)
        AppendEntry(writer, file, AE_IFREG);
    archive_write_free(writer);
    for (const File& file : files)
        RestoreName(bytes, file.name);
    if (kind == Kind::kTar) SumTarHeaders(bytes);
    return bytes;
}

// Cabinet format 1.3: one folder of uncompressed blocks, no check sums.
Bytes MakeCab(const std::vector<File>& files) {
    Bytes entries;
    std::string data;
    for (const File& file : files) {
        AppendNumber(entries, file.content.size(), 4);
        AppendNumber(entries, data.size(), 4);
        AppendNumber(entries, 0, 2);            // folder
        AppendNumber(entries, 0x0021'2B29, 4);  // date and time
        AppendNumber(entries, 0, 2);            // attributes
        Append(entries, file.name);
        entries.push_back(0);
        data += file.content;
    }
    Bytes blocks;
    constexpr size_t kBlock = 0x8000;
    size_t count = 0;
    for (size_t at = 0; at < data.size(); at += kBlock, ++count) {
        const std::string_view block = std::string_view(data).substr(at, kBlock);
        AppendNumber(blocks, 0, 4);
        AppendNumber(blocks, block.size(), 2);
        AppendNumber(blocks, block.size(), 2);
        Append(blocks, block);
    }
    Bytes cab;
    Append(cab, "MSCF");
    AppendNumber(cab, 0, 4);
    AppendNumber(cab, 44 + entries.size() + blocks.size(), 8);
    AppendNumber(cab, 44, 8);      // offset of the entries
    AppendNumber(cab, 0x0103, 2);  // version
    AppendNumber(cab, 1, 2);       // folders
    AppendNumber(cab, files.size(), 2);
    AppendNumber(cab, 0, 6);
    AppendNumber(cab, 44 + entries.size(), 4);
    AppendNumber(cab, count, 2);
    AppendNumber(cab, 0, 2);  // not compressed
    cab.insert(cab.end(), entries.begin(), entries.end());
    cab.insert(cab.end(), blocks.begin(), blocks.end());
    return cab;
}

uint16_t Crc16(std::string_view text) {
    uint16_t sum = 0;
    for (const char character : text) {
        sum = static_cast<uint16_t>(sum ^ static_cast<uint8_t>(character));
        for (int i = 0; i < 8; ++i)
            sum = static_cast<uint16_t>((sum & 1) != 0 ? sum >> 1 ^ 0xA001 : sum >> 1);
    }
    return sum;
}

}  // namespace

void SumTarHeaders(Bytes& tar) {
    constexpr std::string_view kMark = "ustar";
    for (auto header = tar.begin(); tar.end() - header >= 512; header += 512) {
        if (!std::equal(kMark.begin(), kMark.end(), header + 257)) continue;
        const auto field = header + 148;
        std::fill_n(field, 8, uint8_t{' '});
        unsigned sum = std::accumulate(header, header + 512, 0u);
        for (int i = 6; i-- > 0; sum >>= 3)
            field[i] = static_cast<uint8_t>('0' + (sum & 7));
        field[6] = 0;
    }
}

Bytes Gzip(const Bytes& bytes) {
    z_stream stream{};
    constexpr int kGzipFormat = 16;
    deflateInit2(&stream, 9, Z_DEFLATED, kGzipFormat + MAX_WBITS, 9, Z_DEFAULT_STRATEGY);
    Bytes packed(deflateBound(&stream, static_cast<uLong>(bytes.size())));
    stream.next_in = const_cast<Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = packed.data();
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

Bytes LzhMember(int level, std::string_view method, const File& file, std::string_view packed) {
    std::string name = file.name;
    std::string folder;
    if (level > 0 && name.find('/') != std::string::npos) {
        folder = name.substr(0, name.rfind('/') + 1);
        name = name.substr(folder.size());
        for (char& character : folder)
            if (character == '/') character = '\xFF';
    }
    Bytes extended;  // behind the size of the first one
    const auto extend = [&](uint8_t kind, const std::string& text) {
        if (text.empty()) return;
        AppendNumber(extended, text.size() + 3, 2);
        extended.push_back(kind);
        Append(extended, text);
    };
    if (level == 2) extend(1, name);
    if (level > 0) extend(2, folder);
    if (level > 0) AppendNumber(extended, 0, 2);

    Bytes header;
    Append(header, method);
    AppendNumber(header, packed.size() + (level == 1 ? extended.size() - 2 : 0), 4);
    AppendNumber(header, file.content.size(), 4);
    AppendNumber(header, level == 2 ? kFileTime : 0x2B290021, 4);
    header.push_back(0x20);
    header.push_back(static_cast<uint8_t>(level));
    if (level < 2) {
        header.push_back(static_cast<uint8_t>(name.size()));
        Append(header, name);
    }
    AppendNumber(header, Crc16(file.content), 2);
    if (level > 0) header.push_back('M');
    Bytes member;
    if (level == 2) {
        AppendNumber(member, header.size() + extended.size() + 2, 2);
    } else {
        if (level == 1) header.insert(header.end(), extended.begin(), extended.begin() + 2);
        uint8_t sum = 0;
        for (const uint8_t byte : header)
            sum = static_cast<uint8_t>(sum + byte);
        member = {static_cast<uint8_t>(header.size()), sum};
    }
    member.insert(member.end(), header.begin(), header.end());
    member.insert(member.end(), extended.begin() + (level == 1 ? 2 : 0), extended.end());
    Append(member, packed);
    return member;
}

File LharcFile() {
    return {"old.txt", "abracadabra, abracadabra"};
}

std::string LharcPacked() {
    return "\xF6\xFB\xBF\xD8\xBE\xFC\x1F\x0C\x18\x98\x77\x6E\x35\x97\x5E\xB7\x76\x15\xD7\xF5\xBD"
           "\x6E"
           "\xA0";
}

Bytes MakeArchive(Kind kind, const std::vector<File>& files) {
    if (kind == Kind::kCab) return MakeCab(files);
    if (kind == Kind::kRar) return MakeRar(files);
    if (kind == Kind::kRar5) return MakeRar5(files);
    if (kind < Kind::kLzhLevel0) return Write(kind, files);
    Bytes lzh;
    for (const File& file : files) {
        const int level = static_cast<int>(kind) - static_cast<int>(Kind::kLzhLevel0);
        const Bytes member = LzhMember(level, "-lh0-", file, file.content);
        lzh.insert(lzh.end(), member.begin(), member.end());
    }
    lzh.push_back(0);
    return lzh;
}

std::string SomeText(size_t size, unsigned seed) {
    std::string text;
    while (text.size() < size) {
        seed = seed * 1664525 + 1013904223;
        text += std::to_string(seed >> 20);
    }
    text.resize(size);
    return text;
}

}  // namespace tessary::unpack::test
