// An archive as a test opens it, and what the archives among the seeds hold.
#pragma once

#include "plugins/axtessarc/archive_reader.h"
#include "tests/support/seeds.h"

namespace tessary::unpack::test {

using codec::Condition;
using codec::Result;
using tessary::test::Bytes;

constexpr int64_t kFileTime = 1'000'000'000;  // of every member

inline Bytes Archive(const std::string& name) {
    return tessary::test::Seed("fuzz_archive/" + name);
}

// Of each of these there is "…-two" with the members a.txt and b.txt of 300 bytes, and
// "…-large.gz" with kLarge; of those that are not LZH "…-names" with small members, too.
inline const std::string kFormats[] = {"zip",     "zip-stored", "7z",  "tar", "tar-gz",
                                       "tar-bz2", "tar-xz",     "cab", "rar", "rar5",
                                       "lzh0",    "lzh1",       "lzh2"};

// The contents of a member: its name and a number, over and over.
inline std::string TextOf(const std::string& name, size_t size) {
    std::string text;
    for (int i = 0; text.size() < size; ++i)
        text += name + std::to_string(i % 50);
    text.resize(size);
    return text;
}

struct File {
    std::string name;
    size_t size;

    std::string Content() const { return TextOf(name, size); }
};
inline const File kLarge[] = {{"first.txt", 100'000},
                              {"folder/small.txt", 5},
                              {"folder/large.txt", 300'000},
                              {"empty.txt", 0}};

class TextSink final : public files::ByteSink {
  public:
    explicit TextSink(size_t most = SIZE_MAX) : most_(most) {}
    bool Write(std::span<const uint8_t> bytes) noexcept override {
        if (text.size() + bytes.size() > most_) return false;
        text.append(bytes.begin(), bytes.end());
        return true;
    }
    std::string text;

  private:
    size_t most_;
};

// An archive in memory; without success of `result` there is no reader.
template <typename Source>
struct OpenedFrom {
    explicit OpenedFrom(Bytes archive, const std::string& name = {})
        : bytes(std::move(archive)),
          source(bytes),
          result(OpenArchive(source, name, reader, remark)) {}

    Result Extract(size_t index, std::string& text) {
        TextSink sink;
        codec::Progress nobody;
        const Result extracted = reader->Extract(index, sink, nobody);
        text = sink.text;
        told = nobody.Told().condition;
        return extracted;
    }
    // What is told of a member that cannot be extracted.
    Condition Refusal(size_t index) {
        std::string text;
        EXPECT_NE(Extract(index, text), Result::kSuccess);
        return told;
    }
    std::string Content(size_t index) {
        std::string text;
        EXPECT_EQ(Extract(index, text), Result::kSuccess) << index;
        return text;
    }
    const Member& At(size_t index) const { return reader->Members().at(index); }
    size_t Count() const { return reader == nullptr ? 0 : reader->Members().size(); }

    Bytes bytes;
    Source source;
    std::unique_ptr<ArchiveReader> reader;
    codec::Remark remark;
    Condition told = Condition::kNone;  // by the last extraction
    Result result;
};
using Opened = OpenedFrom<dib::MemorySource>;

}  // namespace tessary::unpack::test
