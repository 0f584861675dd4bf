#include "tests/plugins_bundled/made_rar.h"

#include <zlib.h>

#include <array>

#include "plugins/axtessarc/little_endian.h"

namespace tessary::unpack::test {
namespace {

void Append(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

uint32_t Crc32(std::string_view text) {
    return static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(text.data()), static_cast<uInt>(text.size())));
}

// A block of RAR 4: its sum, then kind, flags and fields.
void AppendRarBlock(Bytes& rar, uint8_t kind, uint16_t flags, const Bytes& fields) {
    Bytes block{kind};
    AppendNumber(block, flags, 2);
    AppendNumber(block, fields.size() + 7, 2);
    block.insert(block.end(), fields.begin(), fields.end());
    AppendNumber(rar, crc32(0, block.data(), static_cast<uInt>(block.size())), 2);
    rar.insert(rar.end(), block.begin(), block.end());
}

Bytes BeginRar(uint16_t mainFlags) {
    Bytes rar;
    Append(rar, std::string_view("Rar!\x1A\x07\0", 7));
    AppendRarBlock(rar, 0x73, mainFlags, Bytes(6));
    return rar;
}

constexpr uint16_t kStored = 0x3014;      // by version 2.0
constexpr uint16_t kCompressed = 0x331D;  // by version 2.9

void AppendRarFile(Bytes& rar, const File& file, std::string_view packed, uint16_t method,
                   uint16_t flags) {
    Bytes fields;
    AppendNumber(fields, packed.size(), 4);
    AppendNumber(fields, file.content.size(), 4);
    fields.push_back(2);  // packed on Windows
    AppendNumber(fields, Crc32(file.content), 4);
    AppendNumber(fields, 0x2B290021, 4);  // date and time
    AppendNumber(fields, method, 2);
    AppendNumber(fields, file.name.size(), 2);
    AppendNumber(fields, 0x20, 4);
    Append(fields, file.name);
    AppendRarBlock(rar, 0x74, static_cast<uint16_t>(0x8000 | flags), fields);
    Append(rar, packed);
}

// A block of RAR 5: its sum, its size and its fields, most of them numbers of 7 bits a byte.
void AppendRar5Block(Bytes& rar, const Bytes& fields) {
    Bytes block{static_cast<uint8_t>(fields.size())};
    block.insert(block.end(), fields.begin(), fields.end());
    AppendNumber(rar, crc32(0, block.data(), static_cast<uInt>(block.size())), 4);
    rar.insert(rar.end(), block.begin(), block.end());
}

Bytes BeginRar5() {
    Bytes rar;
    Append(rar, std::string_view("Rar!\x1A\x07\1\0", 8));
    return rar;
}

// A complete code: the first `shortOnes` of its symbols have that length, the others one bit more.
struct Code {
    unsigned symbols, shortOnes, length;

    unsigned LengthOf(unsigned symbol) const { return length + (symbol < shortOnes ? 0 : 1); }
    unsigned BitsOf(unsigned symbol) const {
        return symbol < shortOnes ? symbol : shortOnes + symbol;
    }
};

// Those of what is packed, of distances, of their low parts, of lengths; and of such lengths.
constexpr Code kMain{299, 213, 8}, kDistance{60, 4, 5}, kLow{17, 15, 4}, kLength{28, 4, 4};
constexpr Code kCodeLength{20, 12, 4};

// Compresses as RAR 3 does, and keeps what it has compressed.
class Rar3Writer {
  public:
    std::string text;

    // The tables of code lengths, each told as it is.
    void BeginTable() {
        while (count_ % 8 != 0)
            Put(0, 1);
        Put(0, 2);  // no other kind of compression; nothing kept of the table before
        for (unsigned i = 0; i < kCodeLength.symbols; ++i)
            Put(kCodeLength.LengthOf(i), 4);
        for (const Code& code : {kMain, kDistance, kLow, kLength}) {
            for (unsigned i = 0; i < code.symbols; ++i)
                Put(kCodeLength, code.LengthOf(i));
        }
        repeats_ = 0;
    }
    void NextTable() {
        Put(kMain, kEndOfTable);
        Put(1, 1);  // the same file goes on
        BeginTable();
    }
    void Literal(char byte) {
        text += byte;
        Put(kMain, static_cast<uint8_t>(byte));
    }
    // 32 lengths from 229 on, and of distances of 256 KB and more. `repeatsLow`: the distance's low
    // part is said to be that of the last one, and of the next 15.
    void Match(size_t distance, unsigned length, bool repeatsLow = false) {
        for (unsigned i = 0; i < length; ++i)
            text += text[text.size() - distance];
        Put(kMain, 298);
        Put(length - 229, 5);
        const size_t rest = distance - 1 - kFar;
        Put(kDistance, static_cast<unsigned>(36 + (rest >> 16)));
        Put(rest >> 4 & 0xFFF, 12);
        if (repeats_ != 0) {
            --repeats_;
        } else if (repeatsLow) {
            Put(kLow, 16);
            repeats_ = 15;
        } else {
            Put(kLow, rest & 15);
        }
    }
    std::string Finish() {
        Put(kMain, kEndOfTable);
        Put(0, 2);
        while (count_ % 8 != 0)
            Put(0, 1);
        return packed_;
    }

    static constexpr size_t kFar = 0x40000;

  private:
    static constexpr unsigned kEndOfTable = 256;

    void Put(const Code& code, unsigned symbol) { Put(code.BitsOf(symbol), code.LengthOf(symbol)); }
    void Put(size_t value, unsigned bits) {
        for (; bits > 0; --bits, ++count_) {
            if (count_ % 8 == 0) packed_ += '\0';
            if ((value >> (bits - 1) & 1) != 0)
                packed_.back() = static_cast<char>(packed_.back() | 0x80 >> count_ % 8);
        }
    }

    std::string packed_;
    size_t count_ = 0;  // bits
    int repeats_ = 0;
};

}  // namespace

Bytes MakeRar(const std::vector<File>& files, uint16_t mainFlags, uint16_t fileFlags) {
    Bytes rar = BeginRar(mainFlags);
    for (const File& file : files)
        AppendRarFile(rar, file, file.content, kStored, fileFlags);
    AppendRarBlock(rar, 0x7B, 0x4000, {});
    return rar;
}

Bytes MakeRar5(const std::vector<File>& files, uint8_t mainFlags, bool isEncrypted) {
    Bytes rar = BeginRar5();
    AppendRar5Block(rar, {1, 0, mainFlags});
    for (const File& file : files) {
        const auto appendSize = [](Bytes& fields, size_t size) {
            for (; size > 0x7F; size >>= 7)
                fields.push_back(static_cast<uint8_t>(size | 0x80));
            fields.push_back(static_cast<uint8_t>(size));
        };
        // What stands behind the fields: how it is encrypted, which nobody reads.
        const Bytes extra = isEncrypted ? Bytes{3, 1, 0, 0} : Bytes{};
        Bytes fields{2, static_cast<uint8_t>(isEncrypted ? 3 : 2)};  // data behind the block
        if (isEncrypted) fields.push_back(static_cast<uint8_t>(extra.size()));
        appendSize(fields, file.content.size());
        fields.push_back(4);  // with a sum
        appendSize(fields, file.content.size());
        fields.push_back(0x20);
        AppendNumber(fields, Crc32(file.content), 4);
        fields.insert(fields.end(), {0, 0, static_cast<uint8_t>(file.name.size())});  // stored
        Append(fields, file.name);
        fields.insert(fields.end(), extra.begin(), extra.end());
        AppendRar5Block(rar, fields);
        Append(rar, file.content);
    }
    AppendRar5Block(rar, {5, 0, 0});
    return rar;
}

Bytes MakeRar5WithEncryptedHeaders() {
    Bytes rar = BeginRar5();
    Bytes fields{4, 0, 0, 0, 15};
    fields.resize(fields.size() + 16, 0x55);  // salt
    AppendRar5Block(rar, fields);
    rar.resize(rar.size() + 200, 0xA7);
    return rar;
}

Bytes MakeCompressedRar(File& file) {
    constexpr size_t kWindow = 4u << 20;
    Rar3Writer writer;
    writer.BeginTable();
    const std::string start = SomeText(Rar3Writer::kFar + 70'000, 5);
    for (const char byte : start)
        writer.Literal(byte);
    unsigned seed = 7;
    for (int i = 0; writer.text.size() < kWindow + 300'000; ++i) {
        seed = seed * 1664525 + 1013904223;
        const size_t rest = seed >> 8 & 0xFFF0;
        writer.Match(Rar3Writer::kFar + 1 + rest + 9, 229 + (i & 31), i % 100 == 50);
        if (i % 100 == 57) writer.NextTable();
    }
    file.content = writer.text;
    Bytes rar = BeginRar(0);
    AppendRarFile(rar, file, writer.Finish(), kCompressed, 0);
    AppendRarBlock(rar, 0x7B, 0x4000, {});
    return rar;
}

}  // namespace tessary::unpack::test
