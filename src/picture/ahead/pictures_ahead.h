// The pictures that are read before they are asked for, and those that were shown just now.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/base/worker_thread.h"
#include "picture/ahead/ahead_board.h"
#include "picture/ahead/ahead_reader.h"

namespace tessary {

// The user-interface thread's.
class PicturesAhead {
  public:
    PicturesAhead() = default;
    PicturesAhead(const PicturesAhead&) = delete;
    PicturesAhead& operator=(const PicturesAhead&) = delete;
    ~PicturesAhead() { End(); }

    // From now on so many threads read ahead. Without this nothing is read ahead and kept.
    void Begin(int threads, ConnectorMaker connect);
    // Nothing any more. The threads end, and are not waited for long.
    void End();

    // What to read, as AheadPlan says. Nothing, and nothing is kept, when the user does not want
    // it; nothing is read while the computer saves its battery.
    void Plan(std::vector<AheadEntry> next, AheadEntry shown, PreparePicture prepare);

    // The picture, if it was read and its file has not changed since. One that is being read is
    // waited for as long as there are signs of life and whoever waits for plug-ins (call_watch.h)
    // wants that.
    std::optional<AheadPicture> Take(const AheadEntry& entry);

    // Whether Take would have it at once.
    bool Has(const AheadEntry& entry);

    // Keeps a picture that was read otherwise.
    void Keep(AheadPicture picture);

    // Begins nothing more before the next plan, gives up what is being read, and waits a moment for
    // that: the files are to be nobody's.
    void Rest();

    // To be called when plug-ins may read otherwise from now on. Theirs are started anew.
    void Forget();

  private:
    std::shared_ptr<const KnownPlugins> Plugins();
    void StartThreads();

    int threads_ = 0;
    ConnectorMaker connect_;
    std::shared_ptr<AheadBoard> board_;  // null: nothing is read ahead
    std::vector<std::unique_ptr<Worker>> workers_;
    std::shared_ptr<const KnownPlugins> plugins_;
};

// The one of the program.
PicturesAhead& Ahead();

}  // namespace tessary
