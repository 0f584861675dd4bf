// Small pictures for lists, made behind everything else that the program does.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "app/base/worker_thread.h"
#include "picture/ahead/ahead_reader.h"
#include "picture/ahead/thumb_board.h"

namespace tessary {

// The window's thread's, but for `news`.
class Thumbnails {
  public:
    Thumbnails() = default;
    Thumbnails(const Thumbnails&) = delete;
    Thumbnails& operator=(const Thumbnails&) = delete;
    ~Thumbnails() { End(); }

    // From now on so many threads of low priority make them, each with plug-ins and host processes
    // of its own; they begin with the first that are wanted. They are kept in that folder (with a
    // trailing backslash), within the bound that the user has set, as long as anything is
    // remembered. Failures are told nobody and held against nobody.
    void Begin(int threads, ConnectorMaker connect, const std::wstring& folder);
    // Nothing any more; what is under way is given up, and not waited for long.
    void End();

    // Called on the threads whenever some have come.
    void OnNews(std::function<void()> news) {
        const std::lock_guard lock(news_->mutex);
        news_->tell = std::move(news);
    }

    // These, in that order, and no others. Nothing is read while the computer saves its battery.
    // On the disk they are kept only where `mayKeep`.
    void Want(std::vector<ThumbEntry> entries, int side, bool mayKeep);
    Thumb Find(const ThumbEntry& entry);

    // Nothing is begun while the user waits for something else.
    void Hold(bool holds);
    // Has nothing begun while something is read ahead. From any thread, at any time.
    std::function<void(bool)> HolderAhead() const;
    // Gives up what is being read, and waits a moment for that: the files are to be nobody's.
    void Rest();
    // Plug-ins may read otherwise from now on: all are to be made anew, by new ones. Whoever wants
    // some says so once more, when he is told of news.
    void Forget();
    bool IsForgotten() const { return isForgotten_; }
    // Deletes what is kept on the disk; nothing is kept there before the next are wanted.
    void DeleteKept();

  private:
    struct News {
        std::mutex mutex;
        std::function<void()> tell;
    };

    std::shared_ptr<const KnownPlugins> Plugins();

    int count_ = 0;
    bool isForgotten_ = false;
    AheadSource source_;
    std::shared_ptr<ThumbBoard> board_;  // null: there are none
    std::shared_ptr<News> news_ = std::make_shared<News>();
    std::vector<std::unique_ptr<Worker>> workers_;
    std::shared_ptr<const KnownPlugins> plugins_;
};

}  // namespace tessary
