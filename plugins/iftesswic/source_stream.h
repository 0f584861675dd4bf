// A ByteSource as the IStream that the system's decoders read from.
#pragma once

#include <memory>

#include "helpers/dib/byte_source.h"
#include "plugins/iftesswic/com.h"

namespace tessary::wic {

// Lends a source to the system for its own life. Some decoders read on threads of their own, in
// other apartments, and drop the stream when they please: it can be used from any thread, directly,
// one call after the other; later calls fail.
class LentStream {
  public:
    // The source outlives it. COM must be running.
    explicit LentStream(dib::ByteSource& source);
    LentStream(const LentStream&) = delete;
    LentStream& operator=(const LentStream&) = delete;
    // Waits for the call under way. When somebody still has the stream, this module stays loaded
    // for good.
    ~LentStream();

    // Read-only, at position 0 in the beginning.
    const ComPtr<IStream>& Get() const { return stream_; }

  private:
    class Source;
    class Stream;

    std::shared_ptr<Source> source_;
    ComPtr<IStream> stream_;
};

}  // namespace tessary::wic
