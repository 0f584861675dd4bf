#include <cerrno>

#include "tests/plugins_bundled/made_rar.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

class CountingSource final : public dib::ByteSource {
  public:
    explicit CountingSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        const auto got = bytes_.ReadAt(offset, into);
        count += got.value_or(0);
        return got;
    }
    uint64_t count = 0;

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, GoesOnFromWhereItIsWhenSteppingForward) {
    std::vector<File> files;
    for (unsigned i = 0; i < 20; ++i)
        files.push_back({"page" + std::to_string(i), SomeText(100'000, i)});
    for (const Kind kind : {Kind::kSevenZip, Kind::kTarGzip, Kind::kTarXz, Kind::kRar}) {
        const Bytes bytes = MakeArchive(kind, files);
        CountingSource source(bytes);
        std::unique_ptr<ArchiveReader> reader;
        codec::Remark remark;
        ASSERT_EQ(OpenArchive(source, "", reader, remark), Result::kSuccess);
        source.count = 0;
        codec::Progress nobody;
        for (size_t i = 0; i < files.size(); ++i) {
            TextSink sink;
            EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess);
            EXPECT_EQ(sink.text, files[i].content);
        }
        EXPECT_LT(source.count, bytes.size() * 3 / 2) << static_cast<int>(kind);
    }
}

// As after an allocation that failed, wherever that was.
class ForgetfulSource final : public dib::ByteSource {
  public:
    explicit ForgetfulSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        errno = ENOMEM;
        return bytes_.ReadAt(offset, into);
    }

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, TakesNoOldFailureForAWantOfMemory) {
    for (const char* name :
         {"\x95\x5C\x83.txt", "\xE8\xA1\xA8\xF0\x9F\x98\x80\xFF.txt", "\xF0\x9F\x98\x80.txt"}) {
        for (int kind = 0; kind < static_cast<int>(Kind::kLzhLevel0); ++kind) {
            const Bytes bytes = MakeArchive(static_cast<Kind>(kind), {{name, "1"}, {"b", "2"}});
            const Opened usual(bytes);
            ForgetfulSource source(bytes);
            std::unique_ptr<ArchiveReader> reader;
            codec::Remark remark;
            ASSERT_EQ(OpenArchive(source, "", reader, remark), usual.result) << kind;
            ASSERT_EQ(reader->Members().size(), usual.Count()) << kind;
            for (size_t i = 0; i < usual.Count(); ++i) {
                EXPECT_EQ(reader->Members()[i].name, usual.At(i).name) << kind;
                TextSink sink;
                codec::Progress nobody;
                EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess) << kind;
            }
        }
    }
}

TEST(StreamArchive, UnpacksWhatIsLargerThanTheWindowOfRar3) {
    File file{"large.bmp", {}};
    Opened archive(MakeCompressedRar(file));
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_TRUE(archive.Content(0) == file.content);
}

TEST(StreamArchive, ListsNoMoreThanCanBeUnpackedInTime) {
    // 2 GiB of zeros between two headers, in 2 MiB.
    Bytes tar = MakeArchive(Kind::kTar, {{"a", ""}, {"b", "x"}});
    tar[512 + 124] = '2';  // the first of 11 octal digits, behind the header of the folder
    SumTarHeaders(tar);
    const std::ptrdiff_t split = 1024;
    const Bytes zeros = Gzip(Bytes(16u << 20));
    Bytes bomb = Gzip({tar.begin(), tar.begin() + split});
    for (int i = 0; i < 128; ++i)
        bomb.insert(bomb.end(), zeros.begin(), zeros.end());
    const Bytes rest = Gzip({tar.begin() + split, tar.end()});
    bomb.insert(bomb.end(), rest.begin(), rest.end());
    Opened archive(bomb);
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_EQ(archive.At(0).size, 2u << 30);
}

}  // namespace
}  // namespace tessary::unpack::test
