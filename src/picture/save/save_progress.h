// From the progress of the PNG and JPEG writers to a function.
#pragma once

#include <windows.h>

#include "helpers/dib/byte_stream.h"

namespace tessary {

// The writers know a callback's address and nothing else: for its own life, what they tell on this
// thread through PassThrough goes to a function. There is one at a time.
class SaveProgress {
  public:
    // `tell` gets the percentage done and answers false to have the writer stop; what it throws
    // stops it too.
    explicit SaveProgress(dib::Progress tell);
    SaveProgress(const SaveProgress&) = delete;
    SaveProgress& operator=(const SaveProgress&) = delete;
    ~SaveProgress();

    // What SavePictureFile is given to pass through: the address of a saving::ProgressCallback.
    static LONG_PTR PassThrough();

  private:
    dib::Progress tell_;
};

}  // namespace tessary
