// An archive as a test opens it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "plugins/axtessarc/archive_reader.h"
#include "tests/plugins_bundled/made_archives.h"

namespace tessary::unpack::test {

using codec::Condition;
using codec::Result;

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
struct Opened {
    explicit Opened(Bytes archive, const std::string& name = {})
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
    dib::MemorySource source;
    std::unique_ptr<ArchiveReader> reader;
    codec::Remark remark;
    Condition told = Condition::kNone;  // by the last extraction
    Result result;
};

// Where `text` stands in `bytes` for the `nth` time.
inline size_t Find(const Bytes& bytes, std::string_view text, size_t nth = 0) {
    auto at = std::search(bytes.begin(), bytes.end(), text.begin(), text.end());
    for (; nth > 0; --nth)
        at = std::search(at + 1, bytes.end(), text.begin(), text.end());
    EXPECT_NE(at, bytes.end());
    return static_cast<size_t>(at - bytes.begin());
}

// What most archives of the tests hold.
inline const std::vector<File> kFiles{{"first.txt", SomeText(100'000, 1)},
                                      {"folder/small.txt", "small"},
                                      {"folder/large.txt", SomeText(300'000, 2)},
                                      {"empty.txt", ""}};

}  // namespace tessary::unpack::test
