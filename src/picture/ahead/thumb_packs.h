// Small pictures kept on the disk, between runs and for all copies of the program.
#pragma once

#include <windows.h>

#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "app/base/handles.h"
#include "picture/picture.h"

namespace tessary {

// They lie in packs, files of some megabytes. Each run of the program writes packs of its own, so
// that copies that run at the same time do not meet, and reads those of all others that were there
// before it. What is torn or somebody else's is passed over. Serves several threads.
//
// Beyond the budget the pack goes that was written first, whoever has written it. What is found in
// an old one is written anew, so that what is used stays. Where nothing can be written nothing more
// is, in this run.
class ThumbPacks {
  public:
    // The folder, with a trailing backslash, is made with the first picture; empty: nothing is
    // kept.
    explicit ThumbPacks(std::wstring folder) : folder_(std::move(folder)) {}
    ThumbPacks(const ThumbPacks&) = delete;
    ThumbPacks& operator=(const ThumbPacks&) = delete;
    ~ThumbPacks() = default;

    // How many bytes they may take; 0: nothing is kept, and nothing read.
    void SetBudget(uint64_t bytes);

    // Pictures of 24 bits, under a key that tells all that they were made of.
    std::optional<Picture> Find(const std::wstring& key);
    void Put(const std::wstring& key, const Picture& picture);

    // Deletes all of them, also those of other copies.
    void Clear();

  private:
    struct Pack {
        std::wstring path;
        UniqueFile file;
        uint64_t size = 0;
    };
    struct Place {
        std::list<Pack>::iterator pack;
        uint64_t offset = 0;
    };

    void Open();
    void ReadHeads(std::list<Pack>::iterator pack);
    std::optional<Picture> Read(const Place& place, const std::wstring& key);
    void Append(const std::wstring& key, const Picture& picture);
    bool BeginPack();
    uint64_t PackSize() const;
    void MakeRoom();
    void Drop(const std::wstring& path);

    std::mutex mutex_;
    std::wstring folder_;
    uint64_t budget_ = 0;
    bool isOpen_ = false;
    bool mayWrite_ = true;                        // no attempt to write has failed
    std::list<Pack> packs_;                       // the oldest first
    Pack* own_ = nullptr;                         // the one that is written to; it is the last
    std::unordered_map<uint64_t, Place> places_;  // by the hashes of the keys
};

}  // namespace tessary
