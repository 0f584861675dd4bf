// A flag that is set as long as something goes on.
#pragma once

namespace tessary {

// Sets a flag, which must outlive it, for its own life.
class RaisedFlag {
  public:
    explicit RaisedFlag(bool& flag) : flag_(flag) { flag_ = true; }
    RaisedFlag(const RaisedFlag&) = delete;
    RaisedFlag& operator=(const RaisedFlag&) = delete;
    ~RaisedFlag() { flag_ = false; }

  private:
    bool& flag_;
};

}  // namespace tessary
