#include "convert_cli/run_journal.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>
#include <utility>

#include "convert_cli/worker_process.h"

namespace tessary {
namespace {

enum class Note : uint32_t { kReportBegun, kBegun, kDone };

template <typename Value>
constexpr bool kIsText = std::is_same_v<std::remove_cvref_t<Value>, std::wstring>;

// The same build writes and reads, so values stand as they are in memory.
class Writer {
  public:
    template <typename Value>
    void operator()(const Value& value) {
        if constexpr (kIsText<Value>) {
            (*this)(static_cast<uint32_t>(value.size()));
            Append(value.data(), value.size() * sizeof(wchar_t));
        } else {
            Append(&value, sizeof(value));
        }
    }
    const std::string& Bytes() const { return bytes_; }

  private:
    void Append(const void* data, size_t size) {
        bytes_.append(static_cast<const char*>(data), size);
    }

    std::string bytes_;
};

class Reader {
  public:
    explicit Reader(const std::string& bytes) : bytes_(bytes) {}

    template <typename Value>
    void operator()(Value& value) {
        if constexpr (kIsText<Value>) {
            uint32_t length = 0;
            (*this)(length);
            if (length > (bytes_.size() - at_) / sizeof(wchar_t)) isGood_ = false;
            if (!isGood_) return;
            value.resize(length);
            Take(value.data(), length * sizeof(wchar_t));
        } else {
            Take(&value, sizeof(value));
        }
    }
    // Whether all that was asked for was there.
    bool IsGood() const { return isGood_; }
    bool IsAtEnd() const { return at_ == bytes_.size(); }

  private:
    void Take(void* data, size_t size) {
        isGood_ = isGood_ && size <= bytes_.size() - at_;
        if (!isGood_) return;
        std::memcpy(data, bytes_.data() + at_, size);
        at_ += size;
    }

    const std::string& bytes_;
    size_t at_ = 0;
    bool isGood_ = true;
};

template <typename Direction, typename Report>
void Transfer(Direction& direction, Report& report) {
    direction(report.source);
    direction(report.member);
    direction(report.target);
    direction(report.outcome);
    direction(report.isRenamed);
    direction(report.isReplaced);
    direction(report.isDamaged);
    direction(report.reason);
    direction(report.text);
    direction(report.bytes);
    direction(report.milliseconds);
}

void Write(Note note, const FileReport& report) {
    if (!IsWorker()) return;
    Writer writer;
    writer(note);
    Transfer(writer, report);
    NoteForOverseer(writer.Bytes());
}

}  // namespace

void JournalReportBegun() {
    Write(Note::kReportBegun, {});
}

void JournalReached(const FileReport& report) {
    Write(Note::kBegun, report);
}

void JournalDone(const FileReport& report) {
    Write(Note::kDone, report);
}

JournaledRun ReadJournal(const std::string& notes) {
    JournaledRun run;
    std::optional<FileReport> begun;
    Reader reader(notes);
    while (!reader.IsAtEnd()) {
        Note note{};
        FileReport report;
        reader(note);
        Transfer(reader, report);
        if (!reader.IsGood()) break;
        switch (note) {
            case Note::kReportBegun:
                run.isReportBegun = true;
                break;
            case Note::kBegun:  // so what was before is at its end
                begun = std::move(report);
                break;
            case Note::kDone:
                run.done.push_back(std::move(report));
                begun.reset();
                break;
        }
    }
    if (begun) run.broken.push_back(*begun);
    return run;
}

}  // namespace tessary
