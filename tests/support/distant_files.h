// Files that lie elsewhere, as in a cloud, for systems that know no such files.
#pragma once

#include <windows.h>

#include <atomic>
#include <set>
#include <string>

#include "app/base/distant_file.h"

namespace tessary::test {

class FakeDistantFiles {
  public:
    FakeDistantFiles() {
        SetDistantFiles(
            {.isElsewhere = [this](const std::wstring& path) { return elsewhere.contains(path); },
             .fetchPiece = [this](const std::wstring&) { return FetchPiece(); }});
    }
    FakeDistantFiles(const FakeDistantFiles&) = delete;
    FakeDistantFiles& operator=(const FakeDistantFiles&) = delete;
    // Waits for what was left behind.
    ~FakeDistantFiles() {
        isStuck = false;
        while (waiting > 0)
            Sleep(1);
        SetDistantFiles({});
    }

    std::set<std::wstring> elsewhere;
    std::atomic<int> pieces = 0;         // that were fetched, or tried to be
    std::atomic<unsigned long> error{};  // of all fetching
    std::atomic<bool> isStuck = false;   // nothing comes until it is not
    std::atomic<int> waiting = 0;        // threads for it

  private:
    unsigned long FetchPiece() {
        ++waiting;
        ++pieces;
        while (isStuck)
            Sleep(1);
        --waiting;
        return error;
    }
};

}  // namespace tessary::test
