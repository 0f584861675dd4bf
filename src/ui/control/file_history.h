// What the user has done with files of the list, newest last, to be undone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "files/file_step.h"
#include "picture/read/listed_file.h"

namespace tessary {

// A file of an act, and where it was in the list.
struct ListedStep {
    FileStep file;
    ListedFile entry{};  // with the path before
    int index = -1;      // -1: it was not listed
};

struct FileAct {
    enum class Kind { kDeletion, kRename, kMove, kCopy };

    Kind kind = Kind::kDeletion;
    std::vector<ListedStep> steps{};
    uint32_t list = 0;  // which of the lists that were shown one after the other
};

// What an act is called, as "「a.jpg」の削除".
std::wstring NameOf(const FileAct& act);

class FileHistory {
  public:
    // The oldest goes where there are too many; an act without steps is none.
    void Add(FileAct act);
    // Nothing where there is none.
    const FileAct* Last() const { return acts_.empty() ? nullptr : &acts_.back(); }
    std::optional<FileAct> TakeLast();

  private:
    std::vector<FileAct> acts_;
};

}  // namespace tessary
