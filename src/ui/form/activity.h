// What the user-interface thread is in the middle of, as far as several windows must know it.
#pragma once

namespace tessary {

// Touched by the user-interface thread only.
struct Activity {
    // Set when a file or member is selected, cleared when it has been shown. A selected file that
    // has vanished leaves it set: whether something is being read now is what readsUnderWay tells.
    bool pictureLoading = false;
    int readsUnderWay = 0;       // how many ReadUnderWay there are
    bool quitRequested = false;  // the main window was closed during a read
};

// The one of this process.
Activity& CurrentActivity();

// For its own life files are being read, listed or looked for, and the message loop runs meanwhile:
// commands that would get in the way are refused, and closing the main window only sets
// quitRequested. Whoever ends the outermost one closes the window if that is set.
class ReadUnderWay {
  public:
    ReadUnderWay() { ++CurrentActivity().readsUnderWay; }
    ReadUnderWay(const ReadUnderWay&) = delete;
    ReadUnderWay& operator=(const ReadUnderWay&) = delete;
    ~ReadUnderWay() { --CurrentActivity().readsUnderWay; }
};

inline bool IsReadUnderWay() {
    return CurrentActivity().readsUnderWay > 0;
}

}  // namespace tessary
