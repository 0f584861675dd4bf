// The files beside one that was opened alone.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/base/worker_thread.h"
#include "picture/read/arrangement.h"
#include "ui/form/timer.h"

namespace tessary {

// Looks for them on a thread, behind the picture's back.
class Neighbours {
  public:
    // `take` gets the files of the folder as they are to be listed, with the one that was opened
    // among them under the path that it was opened by, and its place. Answering false it is asked
    // again.
    using Take = std::function<bool(std::vector<ListedFile>& files, int opened)>;
    explicit Neighbours(Take take);
    Neighbours(const Neighbours&) = delete;
    Neighbours& operator=(const Neighbours&) = delete;
    // Leaves behind what is stuck in the system.
    ~Neighbours() { End(); }

    // Of the file with that full path, in place of those that were looked for before. Waits until
    // the plug-ins have told what they read.
    void Begin(const std::wstring& path);
    // They are wanted no more.
    void End();

    // Whether it is worth waiting for them: they are on their way, and not for too long.
    bool AreComing() const;

  private:
    struct Search;

    void Tick();

    Take take_;
    std::wstring path_;  // empty: nothing is looked for
    ULONGLONG begin_ = 0;
    std::shared_ptr<Search> search_;
    std::optional<Worker> worker_;
    Timer timer_;
};

}  // namespace tessary
