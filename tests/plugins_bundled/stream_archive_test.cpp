#include <cerrno>

#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

// Counts what is read, and is as after an allocation that failed, wherever that was.
class WatchedSource final : public dib::ByteSource {
  public:
    explicit WatchedSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        errno = ENOMEM;
        const auto got = bytes_.ReadAt(offset, into);
        count += got.value_or(0);
        return got;
    }
    uint64_t count = 0;

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, GoesOnFromWhereItIsWhenSteppingForward) {
    for (const char* name : {"7z-large.gz", "tar-gz-large.gz", "tar-xz-large.gz", "rar-large.gz"}) {
        const Bytes bytes = Archive(name);
        WatchedSource source(bytes);
        std::unique_ptr<ArchiveReader> reader;
        codec::Remark remark;
        ASSERT_EQ(OpenArchive(source, "", reader, remark), Result::kSuccess);
        source.count = 0;
        codec::Progress nobody;
        for (size_t i = 0; i < std::size(kLarge); ++i) {
            TextSink sink;
            EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess);
            EXPECT_TRUE(sink.text == kLarge[i].Content());
        }
        EXPECT_LT(source.count, bytes.size() * 3 / 2) << name;
    }
}

TEST(StreamArchive, TakesNoOldFailureForAWantOfMemory) {
    for (const std::string& format : kFormats) {
        if (format.starts_with("lzh")) continue;
        const Bytes bytes = Archive(format + "-names");
        const Opened usual(bytes);
        WatchedSource source(bytes);
        std::unique_ptr<ArchiveReader> reader;
        codec::Remark remark;
        ASSERT_EQ(OpenArchive(source, "", reader, remark), usual.result) << format;
        ASSERT_EQ(reader->Members().size(), usual.Count()) << format;
        for (size_t i = 0; i < usual.Count(); ++i) {
            EXPECT_EQ(reader->Members()[i].name, usual.At(i).name) << format;
            TextSink sink;
            codec::Progress nobody;
            EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess) << format;
        }
    }
}

TEST(StreamArchive, UnpacksWhatIsLargerThanTheWindowOfRar3) {
    Opened archive(Archive("rar3-window.gz"));
    ASSERT_EQ(archive.Count(), 1u);
    const std::string content = archive.Content(0);
    EXPECT_EQ(content.size(), 4'494'512u);
    const auto* const bytes = reinterpret_cast<const Bytef*>(content.data());
    EXPECT_EQ(crc32(0, bytes, static_cast<uInt>(content.size())), 0x05C2EE09u);
}

TEST(StreamArchive, ListsNoMoreThanCanBeUnpackedInTime) {
    Opened archive(Archive("tar-bomb.gz.gz"));  // 2 GiB of zeros between two headers, in 2 MiB
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_EQ(archive.At(0).size, 2u << 30);
}

}  // namespace
}  // namespace tessary::unpack::test
