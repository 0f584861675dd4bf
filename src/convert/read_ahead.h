// Reading small files before their turn.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "convert/source_at_hand.h"
#include "plugin/file_stamp.h"

namespace tessary {

// Holds files that were read in the order of the list, by the run's own plug-ins, as long as nobody
// changes them.
class ReadAhead {
  public:
    // Begins to make the file of a picture that was read of a file, which had that stamp
    // (ExactStampOf) when its reading began; may answer null. `takesOwnColors`: as ReadWatch has
    // it.
    using Encode = std::function<std::shared_ptr<Encoding>(
        const std::wstring& path, const std::optional<FileStamp>& stamp, ReadResult& read)>;
    ReadAhead(bool takesOwnColors, Encode encode)
        : takesOwnColors_(takesOwnColors), encode_(std::move(encode)) {}
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;
    ~ReadAhead();

    // Reads the file of a place in the list. Whether it is held now: not when that cannot be done,
    // or is a long work, as with one that is not on this disk. `stamp`: its own. Never throws.
    bool Read(int32_t index, const std::wstring& path, const FileStamp& stamp) noexcept;
    // Holds what is being read elsewhere.
    void Hold(int32_t index, const std::wstring& path, const FileStamp& stamp,
              std::shared_ptr<Encoding> encoding);
    // The last place that was read, or the one at hand.
    int32_t Last(int32_t atHand) const;
    // Whether the next place may be read: what is held does not take too much room, and was read
    // well as far as that is known.
    bool MayGoOn() const;
    // The same, and all is known. Behind an archive, a failure, or what is no bitmap after all it
    // depends on that which plug-in has its turn.
    bool MayAskPlugins() const;

    // What was read of the file, or is being read; nothing when it was not, or has changed. Of
    // files before that place nothing is held any more.
    std::optional<SourceAtHand> Take(int32_t index, const std::wstring& path);

    // To be told of unexpected errors: whether a file is being read, which will be read once more
    // in its turn.
    bool Disturb();

  private:
    struct Held {
        int32_t index;
        FileStamp stamp;
        size_t bytes;  // of its picture; of a bitmap, which is read elsewhere, of the file
        bool isElsewhere;
        SourceAtHand source;
    };

    static bool IsGood(const Held& held);

    const bool takesOwnColors_;
    Encode encode_;
    std::deque<Held> held_;
    bool reads_ = false;
    bool isDisturbed_ = false;
};

}  // namespace tessary
