// The pictures that are read before the view asks for them, and those that it has shown just now.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "picture/ahead/ahead_threads.h"
#include "picture/ahead/thumbnails.h"

namespace tessary {

// The user-interface thread's.
class PicturesAhead {
  public:
    PicturesAhead() = default;
    PicturesAhead(const PicturesAhead&) = delete;
    PicturesAhead& operator=(const PicturesAhead&) = delete;
    ~PicturesAhead() = default;

    // From now on so many threads read ahead. Without this nothing is read ahead and kept.
    void Begin(int threads, ConnectorMaker connect);
    // Nothing any more; what is under way is given up.
    void End();

    // What to read, as AheadPlan says. Nothing, and nothing is kept, when the user does not want
    // it; nothing is read while the computer saves its battery.
    void Plan(std::vector<AheadEntry> next, AheadEntry shown, PreparePicture prepare);

    // Small pictures for lists, by threads of their own.
    Thumbnails& Thumbs() { return thumbs_; }

    // As AheadThreads::Await.
    std::optional<AheadPicture> Take(const AheadEntry& entry);
    // Whether that would have it at once.
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

    std::unique_ptr<AheadThreads> threads_;  // null: nothing is read ahead
    std::shared_ptr<const KnownPlugins> plugins_;
    Thumbnails thumbs_;
};

// The one of the program.
PicturesAhead& Ahead();

}  // namespace tessary
